Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.stringForKey("represented") = "here"
Dim values As New Dictionary
values.Value("registered") = 5
d.registerDefaults values
Dim all As Dictionary = d.dictionaryRepresentation
Print all.Value("represented")
Print all.Value("registered")
Print Str(all.HasKey("not set"))
