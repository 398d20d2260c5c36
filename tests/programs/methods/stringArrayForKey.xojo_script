Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(d.stringArrayForKey("unset").Ubound)
d.setStringArrayValue "files", Array("one", "", "zwei", "三")
Dim files() As String = d.stringArrayForKey("files")
Print Str(files.Ubound) + " " + Join(files, ",")
Print d.stringArrayForKey("files")(1)
For Each file As String In d.stringArrayForKey("files")
  Print Uppercase(file)
Next
d.integerForKey("files") = 1
Print Str(d.stringArrayForKey("files").Count)
