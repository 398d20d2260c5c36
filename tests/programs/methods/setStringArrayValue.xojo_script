Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim recent() As String
recent.Append "a.txt"
recent.Append "b.txt"
d.setStringArrayValue("recent", recent)
Print Join(d.stringArrayForKey("recent"), ",")
recent.Insert(0, "c.txt")
d.setStringArrayValue "recent", recent
Print Join(d.stringArrayForKey("recent"), ",")
recent.RemoveAll
d.setStringArrayValue "recent", recent
Print Str(d.stringArrayForKey("recent").Ubound) + " " + Str(d.variantForKey("recent") Is Nil)
