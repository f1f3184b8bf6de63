Set control = CreateObject("BrevantisLib.Brevantis")  ' as a program installed with the package would
WScript.Echo "created " & control.CompanyName
