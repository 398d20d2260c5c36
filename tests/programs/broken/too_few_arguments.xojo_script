' Too few arguments.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.setIntegerValue("n")
