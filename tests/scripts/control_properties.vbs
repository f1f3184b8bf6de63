' A control created by a script host, with no saved properties: the
' environment and version stay empty until a form loads it, puts of
' read-only properties fail with their error numbers.
Option Explicit
Dim failures : failures = 0

Sub Check(name, actual, expected)
  If actual <> expected Then
    WScript.Echo "FAIL " & name & ": got [" & actual & "] expected [" & expected & "]"
    failures = failures + 1
  End If
End Sub

Dim c : Set c = CreateObject("BrevantisLib.Brevantis")
Check "Version", c.Version, ""
Check "IsWindowsNT", c.IsWindowsNT, False
Check "WinSysDir", c.WinSysDir, ""
Check "WinTempDir", c.WinTempDir, ""
Check "OSName", c.OSName, ""

c.CompanyName = "Editrice"
Check "CompanyName", c.CompanyName, "Editrice"
c.ProgramMajor = 2
Check "ProgramMajor", c.ProgramMajor, 2

On Error Resume Next
c.Version = "2.00.0000"
Check "Version put", Err.Number, 383
Err.Clear
c.Version = ""
Check "Version put of its own value", Err.Number, 0
Err.Clear
c.IsWindowsNT = True
Check "IsWindowsNT put", Err.Number, 382
Err.Clear
c.WinTempDir = "C:\X"
Check "WinTempDir put", Err.Number, 382
Check "WinTempDir after", c.WinTempDir, ""
On Error GoTo 0

If failures = 0 Then WScript.Echo "ALL OK"
