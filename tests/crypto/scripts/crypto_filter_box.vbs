' Signs, validates, encrypts and decrypts through the registered crypto filter box as a script host does.
Set box = CreateObject("BrevantisLib.clsCryptoFilterBox")
box.InBuffer = "Fattura n. 42, totale " & Chr(128) & " 1.250"
box.Sign : box.Validate
signed = box.Status = 2 And Len(box.Signature) = 64
For i = 1 To 255 : text = text & Chr(i) : Next
box.Password = "segreto"
box.InBuffer = text
box.Encrypt
box.InBuffer = box.OutBuffer
encrypted = box.Status = 1 And Len(box.InBuffer) = 255 And box.InBuffer <> text
box.Decrypt
decrypted = box.Status = 1 And box.OutBuffer = text
WScript.Echo "signed: " & signed & ", encrypted: " & encrypted & ", decrypted: " & decrypted
If Not (signed And encrypted And decrypted) Then WScript.Quit 1
