Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim values As New Dictionary
values.Value("size") = 12
values.Value("font") = "Geneva"
d.registerDefaults(values)
Print Str(d.integerForKey("size")) + " " + d.stringForKey("font")
d.integerForKey("size") = 14
Print Str(d.integerForKey("size"))
d.removeObjectForKey("size")
Print Str(d.integerForKey("size"))
Print d.volatileDomainForName(NSUserDefaultsZEL.NSRegistrationDomain).Value("font")
