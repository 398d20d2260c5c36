Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.setBoolValue("b", True)
Print Str(d.boolForKey("b"))
d.setBoolValue "b", 1 > 2
Print Str(d.boolForKey("b"))
