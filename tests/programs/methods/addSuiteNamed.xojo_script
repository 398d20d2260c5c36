Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim suite As New Dictionary
suite.Value("colour") = "blue"
d.setPersistentDomain suite, "com.example.suite"
Print "[" + d.stringForKey("colour") + "]"
d.addSuiteNamed "com.example.suite"
Print d.stringForKey("colour")
' The program's own values come first.
d.stringForKey("colour") = "red"
Print d.stringForKey("colour")
Try
  d.addSuiteNamed("")
Catch e As NSExceptionZEL
  Print "no name, no suite"
End Try
