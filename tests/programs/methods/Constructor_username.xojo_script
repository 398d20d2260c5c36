' A store for a user of another name; nothing that is there belongs to this program.
Dim d As New NSUserDefaultsZEL("somebody")
Print Str(d.integerForKey("unset"))
Try
  d.Constructor("somebody else")
Catch e As UnsupportedOperationException
  Print e.Message
End Try
Dim e As New NSUserDefaultsZEL("")
Print Str(e Is d)
