Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print "[" + d.URLForKey("unset") + "]"
d.URLForKey("home") = "https://example.com/caf%C3%A9?lang=de#top"
Print d.URLForKey("home")
d.URLForKey("home") = "mailto:somebody@example.com"
Print d.URLForKey("home")
d.URLForKey("home") = "no url at all"
Print "[" + d.URLForKey("home") + "]"
