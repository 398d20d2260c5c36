Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.setDoubleValue("x", 0.1)
Print Str(d.doubleForKey("x"))
d.setDoubleValue "x", 7
Print Str(d.doubleForKey("x"))
d.setDoubleValue("x", 1 / 3)
Print Str(d.doubleForKey("x") * 3 = 1)
