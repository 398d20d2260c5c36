' No result.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim n As Integer = d.removeObjectForKey("n")
