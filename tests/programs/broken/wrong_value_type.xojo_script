' Wrong value type.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.boolForKey("b") = "yes"
