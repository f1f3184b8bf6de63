' Signs, validates, encrypts and decrypts through the crypto filter box, as a
' script host does. Prints FAIL lines, then ALL OK when every check passed.
Option Explicit
Dim failures : failures = 0

Sub Check(name, actual, expected)
  If actual <> expected Then
    WScript.Echo "FAIL " & name & ": got [" & actual & "] expected [" & expected & "]"
    failures = failures + 1
  End If
End Sub

Sub CheckDiffers(name, actual, other)
  If actual = other Then
    WScript.Echo "FAIL " & name & ": unchanged [" & actual & "]"
    failures = failures + 1
  End If
End Sub

Dim box : Set box = CreateObject("BrevantisLib.clsCryptoFilterBox")
Check "new Status", box.Status, 0
Check "new OutBuffer", box.OutBuffer, ""

' Sign and Validate
Dim invoice : invoice = "Fattura n. 42 del 3 marzo, totale " & Chr(128) & " 1.250"
box.InBuffer = invoice
Check "InBuffer", box.InBuffer, invoice
box.Sign
Check "Sign Status", box.Status, 1
Check "Signature length", Len(box.Signature), 64
box.Validate
Check "Validate Status", box.Status, 2
box.InBuffer = "Fattura n. 43 del 3 marzo, totale " & Chr(128) & " 1.250"
box.Validate
Check "Validate changed text Status", box.Status, 1
box.InBuffer = invoice
box.Signature = ""
box.Validate
Check "Validate empty Signature Status", box.Status, 1

' Encrypt and Decrypt, every character of the code page included
Dim text, i
text = "Perch" & Chr(233) & " la citt" & Chr(224) & " " & Chr(232) & " bella: "
For i = 1 To 255
  text = text & Chr(i)
Next
box.Password = "segreto"
Check "Password", box.Password, "segreto"
box.InBuffer = text
box.Encrypt
Check "Encrypt Status", box.Status, 1
Dim secret : secret = box.OutBuffer
Check "cipher length", Len(secret), Len(text)
CheckDiffers "cipher", secret, text
box.InBuffer = secret
box.Decrypt
Check "Decrypt Status", box.Status, 1
Check "round trip", box.OutBuffer, text
box.Password = "altro"
box.Decrypt
Check "other password length", Len(box.OutBuffer), Len(text)
CheckDiffers "other password", box.OutBuffer, text
box.InBuffer = ""
box.Encrypt
Check "empty Encrypt", box.OutBuffer, ""
Check "empty Encrypt Status", box.Status, 1

If failures = 0 Then WScript.Echo "ALL OK"
