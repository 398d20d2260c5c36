' Missing end if.
Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
If d.synchronize Then
  Print "written"
