' A script hands a report class an adapter of its own making: the report prints through it, and where an operation is
' missing or fails, that is reported as an error of the report's procedure.
Dim umgebung, verbindung, allgemein, auswahl, bericht, eigen, fremd

Class LeererAdapter
    Public Nichts
End Class

Class FremderAdapter
    Public Rufe
    Public Felder
    Public Saetze
    Public Scheitert

    Private Sub Class_Initialize()
        Rufe = ""
        Felder = 0
        Saetze = 0
        Scheitert = False
    End Sub
    Private Sub Notiere(name)
        Rufe = Rufe & name & ";"
    End Sub
    Public Function FKT_Lösche_Druckerbeschreibung(pfad)
        Notiere "Lösche " & pfad
        FKT_Lösche_Druckerbeschreibung = True
    End Function
    Public Sub fkt_Form_Hide()
        Notiere "Hide"
    End Sub
    Public Function FKT_DefiniereVariablen_AllgemeineFirmendaten(daten, titel)
        Notiere "Kopf " & titel & " " & daten.Name1
        FKT_DefiniereVariablen_AllgemeineFirmendaten = True
    End Function
    Public Sub LlDefineVariableStart()
    End Sub
    Public Sub LlDefineFieldStart()
    End Sub
    Public Function LlDefineVariableExt(name, inhalt, typ)
        LlDefineVariableExt = True
    End Function
    Public Function LlDefineFieldExt(name, inhalt, typ)
        Felder = Felder + 1
        LlDefineFieldExt = True
    End Function
    Public Function LlSetPrinterToDefault(typ, name)
        LlSetPrinterToDefault = -1
    End Function
    Public Function LlPrintWithBoxStart(typ, name, modus, kasten, titel)
        Notiere "Start " & typ & " " & modus
        LlPrintWithBoxStart = -1
    End Function
    Public Function LlPrintSetBoxText(text, prozent)
        LlPrintSetBoxText = -1
    End Function
    Public Function LlPrint()
        LlPrint = -1
    End Function
    Public Function LlPrintFields()
        Saetze = Saetze + 1
        If Scheitert Then Err.Raise 1234, "Adapter", "gescheitert"
        LlPrintFields = -1
    End Function
    Public Function LlPrintFieldsEnd()
        LlPrintFieldsEnd = -1
    End Function
    Public Function LlPrintEnd(seiten)
        Notiere "Schluss"
        LlPrintEnd = -1
    End Function
End Class

Function Drucke(adapter)
    Drucke = bericht.fkt_Drucken(0, 1, verbindung, allgemein, adapter, "C:\Layouts", "Umsatz", False, auswahl, "C:\Layouts", 1)
End Function

' Wie viele Zeilen einer Datei so beginnen.
Function Anzahl(datei, anfang)
    Dim zeilen
    Anzahl = 0
    Set zeilen = CreateObject("Scripting.FileSystemObject").OpenTextFile(umgebung(datei), 1)
    Do While Not zeilen.AtEndOfStream
        If Left(zeilen.ReadLine, Len(anfang)) = anfang Then Anzahl = Anzahl + 1
    Loop
    zeilen.Close
End Function

Set umgebung = CreateObject("WScript.Shell").Environment("Process")
Set verbindung = CreateObject("KVTTest.Connection")
verbindung.ConnectionString = "Driver=SQLite3;Database=" & umgebung("KVT_DATABASE")
Set allgemein = CreateObject("KVTZUG.clsZugFirmaAllg")
allgemein.Verbinde verbindung, 1
allgemein.LeseFirmaAllg 1
Set auswahl = CreateObject("XArrayDBObject.XArrayDB")
auswahl.ReDim 0, 0, 0, 2
auswahl.Value(0, 0) = True
Set bericht = CreateObject("KVTDruck.clsDruck_Umsatz")

Set eigen = CreateObject("KVTDruck.clsDruckFormular")
eigen.fkt_Starte_Form
Pruefe "Druck mit dem eigenen Adapter", Drucke(eigen), True

Set fremd = New FremderAdapter
Pruefe "Druck mit dem fremden Adapter", Drucke(fremd), True
Pruefe "Rufe", fremd.Rufe, "Lösche C:\Layouts\Umsatz;Kopf Umsatz " & allgemein.Name1 & ";Hide;Start 2 256;Schluss;"
Pruefe "Felder", fremd.Felder, Anzahl("KVT_TEST_RECORD", "LlDefineFieldExt(")
Pruefe "Sätze", fremd.Saetze, Anzahl("KVT_TEST_RECORD", "LlPrintFields()")

Pruefe "Adapter ohne alles", Drucke(New LeererAdapter), False
Pruefe "Fehler 438", Anzahl("KVT_TEST_ERRORS", "clsDruck_Umsatz|fkt_Drucken|438|Objekt"), 1
fremd.Scheitert = True
Pruefe "Adapter mit Fehler", Drucke(fremd), False
Pruefe "Fehler 1234", Anzahl("KVT_TEST_ERRORS", "clsDruck_Umsatz|fkt_Drucken|1234|"), 1

WScript.Echo "fertig"
WScript.Quit 42
