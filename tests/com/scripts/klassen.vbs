' Every class of the component can be created by its name.
Dim klassen, klasse, objekt
klassen = Array("clsDruckManager", "clsDruckFormular", "clsDruck_Umsatz", "clsDRuck_MitarbeiterUebersicht", _
    "clsDruck_Firma", "clsDruck_GemeinK", "clsDruck_MitarbeiterKosten", "clsDruck_MitarbeiterZeiten", _
    "clsDruck_NeutralA", "clsDruck_MitarbeiterStKosten", "clsDruck_MitarbeiterStZeiten", "clsDruck_KalkKosten", _
    "clsDruck_MatUeber", "clsDruck_Bilanz", "clsDruck_BsEMa", "clsDruck_BsEStd", "clsDruck_BsEGes", _
    "clsDruck_Kalkwerte", "clsDruck_WasWenn", "clsDruck_UmsatzHW")
For Each klasse In klassen
    Set objekt = CreateObject("KVTDruck." & klasse)
    Pruefe klasse, TypeName(objekt), "_" & klasse
    Set objekt = Nothing
Next
WScript.Echo "fertig"
WScript.Quit 42
