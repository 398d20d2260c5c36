Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim point As New Dictionary
point.Value("x") = 1.5
point.Value("y") = -2
d.setDictionaryValue("point", point)
Print d.dictionaryForKey("point").Value("x") + ";" + d.dictionaryForKey("point").Value("y")
d.setDictionaryValue "point", New Dictionary
Print Str(d.dictionaryForKey("point").Count)
