Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.integerForKey("n") = 1
Print Str(d.objectIsForcedForKey("n"))
Print Str(d.objectIsForcedForKey("unset"))
