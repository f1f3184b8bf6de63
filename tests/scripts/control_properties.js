// The same from JScript: errors arrive as exceptions carrying the HRESULT.
var failures = 0;
function check(name, actual, expected) {
  if (actual !== expected) {
    WScript.Echo("FAIL " + name + ": got [" + actual + "] expected [" + expected + "]");
    failures++;
  }
}
function errorOf(put) {
  try { put(); } catch (e) { return e.number & 0xFFFF; }
  return 0;
}

var c = new ActiveXObject("BrevantisLib.Brevantis");
check("Version", c.Version, "");
check("IsWindowsNT", c.IsWindowsNT, false);
check("OSName", c.OSName, "");
check("WinSysDir", c.WinSysDir, "");
c.Author1 = "Giulia";
check("Author1", c.Author1, "Giulia");
check("Version put", errorOf(function () { c.Version = "0.00.0001"; }), 383);
check("OSName put", errorOf(function () { c.OSName = "Altro"; }), 382);
check("OSName after", c.OSName, "");

if (failures == 0) WScript.Echo("ALL OK");
