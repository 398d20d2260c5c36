' Wrong key type.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print d.stringForKey(5)
