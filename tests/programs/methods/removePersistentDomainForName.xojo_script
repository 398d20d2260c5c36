Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim domain As New Dictionary
domain.Value("a") = 1
d.setPersistentDomain domain, "com.example.gone"
Print Str(d.persistentDomainForName("com.example.gone").Count)
d.removePersistentDomainForName "com.example.gone"
Print Str(d.persistentDomainForName("com.example.gone") Is Nil)
Print Str(d.persistentDomainNames.IndexOf("com.example.gone"))
