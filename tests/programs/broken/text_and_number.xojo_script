' Text and number.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print "n is " + d.integerForKey("n")
