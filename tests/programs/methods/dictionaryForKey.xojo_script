Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(d.dictionaryForKey("unset") Is Nil)
Dim window As New Dictionary
window.Value("left") = 10
window.Value("title") = "Fenster"
window.Value("inner") = New Dictionary
Dictionary(window.Value("inner")).Value("deep") = 0.5
d.dictionaryForKey("window") = window
Dim back As Dictionary = d.dictionaryForKey("window")
Print Str(back.Count) + " " + back.Value("left") + " " + back.Value("title")
Dim inner As Dictionary = back.Value("inner")
Print inner.Value("deep")
' What was read is a copy.
back.Value("left") = 99
Print d.dictionaryForKey("window").Value("left")
d.dictionaryForKey("window") = Nil
Print Str(d.dictionaryForKey("window") Is Nil)
