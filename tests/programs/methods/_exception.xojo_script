Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
' Only there so that the class is known beside NSExceptionZEL: it gives nothing.
Dim e As NSExceptionZEL = d._exception
Print Str(e Is Nil)
