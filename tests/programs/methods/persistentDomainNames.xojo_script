Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim domain As New Dictionary
domain.Value("a") = 1
d.setPersistentDomain domain, "com.example.listed"
Dim names() As String = d.persistentDomainNames
Print Str(names.IndexOf("com.example.listed") >= 0)
Print Str(names.IndexOf("com.example.other") >= 0)
