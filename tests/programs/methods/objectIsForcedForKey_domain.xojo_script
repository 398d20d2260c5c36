Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.integerForKey("n") = 1
Print Str(d.objectIsForcedForKey("n", NSUserDefaultsZEL.NSGlobalDomain))
Print Str(d.objectIsForcedForKey("unset", "com.example.nowhere"))
