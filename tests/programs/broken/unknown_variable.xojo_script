' Unknown variable.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim count As Integer = 1
d.integerForKey("n") = cuont + 1
