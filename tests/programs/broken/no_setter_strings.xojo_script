' No setter strings.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.stringArrayForKey("list") = Split("a b")
