' Missing then.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
If d.synchronize
  Print "written"
End If
