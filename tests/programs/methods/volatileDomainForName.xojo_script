Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(d.volatileDomainForName("nothing of that name") Is Nil)
Dim domain As New Dictionary
domain.Value("until") = New Date(2030, 12, 31)
d.setVolatileDomain domain, "mine"
Print d.volatileDomainForName("mine").Value("until").DateValue.SQLDate
' An object that is in it is found by its key as well when the domain is searched.
Print Str(d.volatileDomainForName("mine").Count)
