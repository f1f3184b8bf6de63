' Creates the control by ProgID as a program installed with the package would.
Dim control : Set control = CreateObject("BrevantisLib.Brevantis")
WScript.Echo "created " & control.CompanyName
