Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(d.floatForKey("unset"))
d.floatForKey("f") = 1.25
Print Str(d.floatForKey("f"))
d.floatForKey("f") = 0.1
Dim f As Single = 0.1
Print Str(d.floatForKey("f") = f)
Dim x As Double = d.floatForKey("f")
Print Format(x, "0.000000000000")
d.integerForKey("f") = 3
Print Str(d.floatForKey("f"))
