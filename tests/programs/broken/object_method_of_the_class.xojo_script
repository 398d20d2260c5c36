' Object method of the class.
NSUserDefaultsZEL.integerForKey("n") = 5
