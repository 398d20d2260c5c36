' The second of two programs that share settings; it reads what the first has written.

Const kSuite = "com.example.OurPrograms"

Dim defaults As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print "Without the suite: """ + defaults.stringForKey("accentColour") + """"

defaults.addSuiteNamed kSuite
Print "With it: """ + defaults.stringForKey("accentColour") + """, licence " + _
  defaults.stringForKey("licence") + ", since " + _
  defaults.variantForKey("registeredOn").DateValue.SQLDate

' What the viewer sets itself comes first, and stays its own.
defaults.stringForKey("accentColour") = "orange"
Print "The viewer's own: """ + defaults.stringForKey("accentColour") + """"
Dim shared As Dictionary = defaults.persistentDomainForName(kSuite)
Print "Still shared: """ + shared.Value("accentColour") + """"

defaults.removeSuiteNamed kSuite
Print "Licence without the suite: """ + defaults.stringForKey("licence") + """"
