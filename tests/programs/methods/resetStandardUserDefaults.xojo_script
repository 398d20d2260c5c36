Dim before As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
before.integerForKey("n") = 5
Print Str(before.synchronize)
NSUserDefaultsZEL.resetStandardUserDefaults
Dim after As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(after Is before)
Print Str(after.integerForKey("n"))
' The object from before is still good.
Print Str(before.integerForKey("n"))
