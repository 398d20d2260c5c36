Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(d.boolForKey("unset"))
d.boolForKey("b") = True
Print Str(d.boolForKey("b"))
d.boolForKey("b") = Not d.boolForKey("b")
Print Str(d.boolForKey("b"))
d.stringForKey("b") = "YES"
Print Str(d.boolForKey("b"))
d.integerForKey("b") = 0
Print Str(d.boolForKey("b"))
If d.boolForKey("b") Or Not d.boolForKey("unset") Then Print "conditions, too"
