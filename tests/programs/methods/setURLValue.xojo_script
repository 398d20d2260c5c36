Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.setURLValue("u", "https://example.com/")
Print d.URLForKey("u")
d.setURLValue "u", "not a url"
Print "[" + d.URLForKey("u") + "]"
d.setURLValue("u", "ftp://example.com/a%20b")
Print d.URLForKey("u")
d.setURLValue("u", "")
Print "[" + d.URLForKey("u") + "]"
