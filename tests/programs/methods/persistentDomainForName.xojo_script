Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(d.persistentDomainForName("com.example.unknown") Is Nil)
Dim domain As New Dictionary
domain.Value("list") = Array("a", "b")
d.setPersistentDomain domain, "com.example.read"
Dim list() As Variant = d.persistentDomainForName("com.example.read").Value("list")
Print list(0) + list(1)
