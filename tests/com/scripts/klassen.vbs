' Every class of the component can be created by its name, and says it. Wine's script host does not ask an object for its
' class, but for its interface, whose name begins with "_".
Dim klassen, klasse, objekt, art
klassen = Array("clsDruckManager", "clsDruckFormular", "clsDruck_Umsatz", "clsDRuck_MitarbeiterUebersicht", _
    "clsDruck_Firma", "clsDruck_GemeinK", "clsDruck_MitarbeiterKosten", "clsDruck_MitarbeiterZeiten", _
    "clsDruck_NeutralA", "clsDruck_MitarbeiterStKosten", "clsDruck_MitarbeiterStZeiten", "clsDruck_KalkKosten", _
    "clsDruck_MatUeber", "clsDruck_Bilanz", "clsDruck_BsEMa", "clsDruck_BsEStd", "clsDruck_BsEGes", _
    "clsDruck_Kalkwerte", "clsDruck_WasWenn", "clsDruck_UmsatzHW")
For Each klasse In klassen
    Set objekt = CreateObject("KVTDruck." & klasse)
    art = TypeName(objekt)
    If Left(art, 1) = "_" Then art = Mid(art, 2)
    Pruefe klasse, art, klasse
    Set objekt = Nothing
Next
WScript.Echo "fertig"
WScript.Quit 42
