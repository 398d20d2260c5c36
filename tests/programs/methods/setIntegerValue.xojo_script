Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.setIntegerValue("n", 2147483647)
Print Str(d.integerForKey("n"))
d.setIntegerValue "n", -1
Print Str(d.integerForKey("n"))
Dim small As Double = 3.0
d.setIntegerValue("n", small)
Print Str(d.integerForKey("n"))
Try
  d.setIntegerValue("", 1)
Catch e As NSExceptionZEL
  Print "a key is needed"
End Try
