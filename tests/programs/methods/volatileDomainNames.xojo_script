Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim names() As String = d.volatileDomainNames
Print Str(names.IndexOf(NSUserDefaultsZEL.NSArgumentDomain) >= 0)
Print Str(names.IndexOf("mine") >= 0)
Dim domain As New Dictionary
domain.Value("a") = 1
d.setVolatileDomain domain, "mine"
Print Str(d.volatileDomainNames.IndexOf("mine") >= 0)
