' Wrong overload.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
If d.objectIsForcedForKey("n", 5) Then Print "forced"
