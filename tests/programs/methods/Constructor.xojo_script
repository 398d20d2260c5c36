Dim d As New NSUserDefaultsZEL
d.stringForKey("kept") = "by a private object"
Print d.stringForKey("kept")
Print Str(d Is NSUserDefaultsZEL.standardUserDefaults)
Try
  d.Constructor
Catch e As UnsupportedOperationException
  Print e.Message
End Try
Print d.stringForKey("kept")
