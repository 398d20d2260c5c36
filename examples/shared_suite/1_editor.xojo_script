' Two programs of one maker share settings: a domain of its own, which each of them adds as a suite.
' This is the first of them; it writes.

Const kSuite = "com.example.OurPrograms"

Dim defaults As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim shared As New Dictionary
shared.Value("accentColour") = "teal"
shared.Value("licence") = "0815"
shared.Value("registeredOn") = New Date(2024, 2, 29)
defaults.setPersistentDomain shared, kSuite

If defaults.synchronize Then Print "The editor has stored " + Str(shared.Count) + " shared settings."
