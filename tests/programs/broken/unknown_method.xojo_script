' Unknown method.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.integerForKy("n") = 5
