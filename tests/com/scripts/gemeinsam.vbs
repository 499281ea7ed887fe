' What every script begins with; run-script puts it before them.
Option Explicit

' Ends the script where a value is not what it should be.
Sub Pruefe(was, ist, soll)
    If ist <> soll Then
        WScript.Echo "FALSCH: " & was & ": " & ist & " statt " & soll
        WScript.Quit 1
    End If
End Sub
