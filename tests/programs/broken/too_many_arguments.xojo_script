' Too many arguments.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print d.stringForKey("n", "none")
