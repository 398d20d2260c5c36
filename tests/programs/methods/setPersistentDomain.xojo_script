Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim domain As New Dictionary
domain.Value("a") = "x"
domain.Value("b") = 2
d.setPersistentDomain(domain, "com.example.whole")
Print Str(d.synchronize)
Dim back As Dictionary = d.persistentDomainForName("com.example.whole")
Print Str(back.Count) + back.Value("a") + back.Value("b")
domain.Remove "a"
d.setPersistentDomain domain, "com.example.whole"
Print Str(d.persistentDomainForName("com.example.whole").HasKey("a"))
d.removePersistentDomainForName "com.example.whole"
