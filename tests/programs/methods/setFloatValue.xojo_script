Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.setFloatValue("f", 0.5)
Print Str(d.floatForKey("f"))
d.setFloatValue "f", 3
Print Str(d.floatForKey("f"))
d.setFloatValue("f", 0.1)
Print Format(d.doubleForKey("f"), "0.0000")
