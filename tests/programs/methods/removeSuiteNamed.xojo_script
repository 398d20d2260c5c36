Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim suite As New Dictionary
suite.Value("size") = 12
d.setPersistentDomain suite, "com.example.suite"
d.addSuiteNamed "com.example.suite"
Print Str(d.integerForKey("size"))
d.removeSuiteNamed "com.example.suite"
Print Str(d.integerForKey("size"))
d.removeSuiteNamed "com.example.never.added"
Print "still here"
