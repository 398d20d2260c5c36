Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.integerForKey("n") = 5
Print Str(d.synchronize)
' What is on disk is there for another object.
Dim other As New NSUserDefaultsZEL
Print Str(other.integerForKey("n"))
