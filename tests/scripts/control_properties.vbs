' The registered control from VBScript: a string and a number round trip, a refused put's error number.
Set c = CreateObject("BrevantisLib.Brevantis")
c.CompanyName = "Editrice"
c.ProgramMajor = 2
On Error Resume Next
c.Version = "9.99.9999"
result = c.CompanyName & " " & c.ProgramMajor & " " & Err.Number
If result = "Editrice 2 383" Then WScript.Echo "ALL OK" Else WScript.Echo "FAIL: " & result
