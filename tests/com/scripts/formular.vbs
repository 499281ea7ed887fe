' A script uses the adapter directly, with umlauts in names and texts.
Dim formular

Set formular = CreateObject("KVTDruck.clsDruckFormular")
Pruefe "fkt_Starte_Form", formular.fkt_Starte_Form(), True
Pruefe "LlDefineVariableExt", formular.LlDefineVariableExt("Größe", "Maß über Höhe", 268435456), True
Pruefe "PrFehler 0", formular.PrFehler(0, "x"), -1
Pruefe "PrFehler -998", formular.PrFehler(-998, "x"), -998
Pruefe "PrFehler -1", formular.PrFehler(-1, "x"), 0
Pruefe "LlPrint", formular.LlPrint(), -1
Pruefe "FKT_Lösche_Druckerbeschreibung", formular.FKT_Lösche_Druckerbeschreibung("C:\gibt es nicht"), True
formular.LlPrintAbort
formular.fkt_Form_Hide
formular.fkt_Form_Unload
WScript.Echo "fertig"
WScript.Quit 42
