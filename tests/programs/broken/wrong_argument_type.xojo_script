' Wrong argument type.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.setIntegerValue "n", "5"
