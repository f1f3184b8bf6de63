' Creates the control by ProgID, as a script host does, and checks what a
' script sees. The crypto filter box shows message boxes when it is created:
' its script runs under a test that answers them (tests/crypto). Prints FAIL
' lines, then ALL OK when every check passed.
Option Explicit
Dim failures : failures = 0

Sub Check(name, actual, expected)
  If actual <> expected Then
    WScript.Echo "FAIL " & name & ": got [" & actual & "] expected [" & expected & "]"
    failures = failures + 1
  End If
End Sub

Dim control : Set control = CreateObject("BrevantisLib.Brevantis")
Check "DefaultProgramFolder", control.DefaultProgramFolder, "Pellandra"
Check "CDIndexFile", control.CDIndexFile, "zo\index.htm"
Check "SplashScreenInterval", control.SplashScreenInterval, 1000

control.ProgramName = "Atlante " & String(60, "x")
Check "ProgramName length", Len(control.ProgramName), 50
control.Author1 = "Caf" & Chr(233)
Check "Author1", control.Author1, "Caf" & Chr(233)

Dim second : Set second = CreateObject("BrevantisLib.Brevantis")
Check "shared store", second.Author1, control.Author1

On Error Resume Next
control.OSName = "Other"
Check "put OSName error", Err.Number, 382
Err.Clear
control.Version = "9.99.9999"
Check "put Version error", Err.Number, 383
Err.Clear
On Error GoTo 0

If failures = 0 Then WScript.Echo "ALL OK"
