Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.setStringValue("s", "one" + EndOfLine + "two")
Print d.stringForKey("s")
d.setStringValue "s", "a ""quoted"" word"
Print d.stringForKey("s")
d.setStringValue("s", "")
Print Str(d.variantForKey("s") Is Nil)
