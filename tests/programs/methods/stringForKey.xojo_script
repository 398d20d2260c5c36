Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print "[" + d.stringForKey("unset") + "]"
d.stringForKey("s") = "Grüße, 世界"
Print d.stringForKey("s")
Print Str(d.stringForKey("s").Length) + " " + d.stringForKey("s").Uppercase
d.stringForKey("ключ") = "any key"
Print d.stringForKey("ключ")
d.stringForKey("s") = ""
Print Str(d.variantForKey("s") Is Nil)
Try
  d.stringForKey("") = "x"
Catch e As NSExceptionZEL
  Print "a key is needed"
End Try
