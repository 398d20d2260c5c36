Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.stringForKey("s") = "text"
d.removeObjectForKey("s")
Print "[" + d.stringForKey("s") + "]"
d.removeObjectForKey "never set"
d.registerDefaults(defaults)
d.stringForKey("s") = "own"
Print d.stringForKey("s")
d.removeObjectForKey("s")
Print d.stringForKey("s")

Function defaults() As Dictionary
  Dim values As New Dictionary
  values.Value("s") = "registered"
  Return values
End Function
