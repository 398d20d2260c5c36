Dim one As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim two As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(one Is two)
one.stringForKey("s") = "shared"
Print two.stringForKey("s")
one = Nil
two = Nil
Print NSUserDefaultsZEL.standardUserDefaults.stringForKey("s")
