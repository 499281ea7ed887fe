' A script prints, previews and designs the turnover; every argument is a variable, which a script passes by reference.
Dim umgebung, verbindung, manager, auswahl, fenster, firma, ordner, liste, modus, auswahldialog, produkt

Set umgebung = CreateObject("WScript.Shell").Environment("Process")
Set verbindung = CreateObject("KVTTest.Connection")
verbindung.ConnectionString = "Driver=SQLite3;Database=" & umgebung("KVT_DATABASE")
Set auswahl = CreateObject("XArrayDBObject.XArrayDB")
auswahl.ReDim 0, 0, 0, 2
auswahl.Value(0, 0) = True

Set manager = CreateObject("KVTDruck.clsDruckManager")
Pruefe "fkt_Init", manager.fkt_Init(verbindung), False
firma = 1
ordner = umgebung("KVT_APPLICATION")
liste = "Umsatz"
auswahldialog = False
fenster = 4711
produkt = 1
For modus = 0 To 2
    Pruefe "Modus " & modus, manager.fkt_Drucken(modus, firma, auswahl, ordner, liste, auswahldialog, fenster, produkt), True
Next
Pruefe "Name in anderer Schreibung", manager.FKT_DRUCKEN(0, 1, auswahl, ordner, "Umsatz", False, 4711, 1), True
Pruefe "unbekannte Liste", manager.fkt_Drucken(0, 1, auswahl, ordner, "UMSATZ", False, 4711, 1), False
Pruefe "Terminate_Preview", manager.Terminate_Preview(fenster), True
Pruefe "fremdes Fenster", manager.Terminate_Preview(99), True
WScript.Echo "fertig"
WScript.Quit 42
