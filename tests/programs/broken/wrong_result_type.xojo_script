' Wrong result type.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim n As Integer = d.stringForKey("n")
