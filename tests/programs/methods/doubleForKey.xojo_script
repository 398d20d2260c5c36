Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(d.doubleForKey("unset"))
d.doubleForKey("x") = 0.1
Print Str(d.doubleForKey("x"))
Print Str(d.doubleForKey("x") = 0.1)
d.doubleForKey("x") = -1e300
Print Str(d.doubleForKey("x"))
d.doubleForKey("x") = 5
Print Str(d.doubleForKey("x"))
d.stringForKey("x") = "2.5"
Print Str(d.doubleForKey("x"))
