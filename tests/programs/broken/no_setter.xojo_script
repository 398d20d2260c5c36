' No setter.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.arrayForKey("list") = Array(1, 2)
