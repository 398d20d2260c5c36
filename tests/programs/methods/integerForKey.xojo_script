Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(d.integerForKey("unset"))
d.integerForKey("n") = 42
Print Str(d.integerForKey("n"))
d.integerForKey("n") = d.integerForKey("n") + 1
d.integerForKey("n") += 1
Print Str(d.integerForKey("n"))
d.integerForKey("n") = -2147483648
Print Str(d.integerForKey("n"))
d.stringForKey("n") = "17"
Print Str(d.integerForKey("n"))
d.doubleForKey("n") = 2.9
Print Str(d.integerForKey("n"))
