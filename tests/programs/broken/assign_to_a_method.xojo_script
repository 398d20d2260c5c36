' Assign to a method.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.synchronize = True
