// The same from JScript, where a refused put arrives as an exception carrying the HRESULT.
var c = new ActiveXObject("BrevantisLib.Brevantis"), refused = 0;
c.Author1 = "Giulia";
try { c.OSName = "Altro"; } catch (e) { refused = e.number & 0xFFFF; }
var result = c.Author1 + " " + refused;
WScript.Echo(result === "Giulia 382" ? "ALL OK" : "FAIL: " + result);
