Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim domain As New Dictionary
domain.Value("a") = 0.5
d.setVolatileDomain(domain, "session")
Print d.volatileDomainForName("session").Value("a")
Try
  d.setVolatileDomain(domain, "session")
Catch e As NSExceptionZEL
  Print "there is one of that name"
End Try
d.removeVolatileDomainForName "session"
