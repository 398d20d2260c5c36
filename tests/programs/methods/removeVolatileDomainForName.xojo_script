Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim domain As New Dictionary
domain.Value("a") = 1
d.setVolatileDomain domain, "temporary"
Print Str(d.volatileDomainNames.IndexOf("temporary") >= 0)
d.removeVolatileDomainForName "temporary"
Print Str(d.volatileDomainNames.IndexOf("temporary") >= 0)
Print Str(d.volatileDomainForName("temporary") Is Nil)
' The name is free again.
d.setVolatileDomain domain, "temporary"
Print Str(d.volatileDomainForName("temporary").Count)
