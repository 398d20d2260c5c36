' What an application starts with before its user has chosen anything: registered values stand in
' for keys that aren't set, and are never written to disk.

Dim defaults As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults

Dim initial As New Dictionary
initial.Value("firstLaunch") = True
initial.Value("fontName") = "Geneva"
initial.Value("fontSize") = 12
initial.Value("languages") = Array("en", "de")
defaults.registerDefaults initial

Sub describe(title As String)
  Dim languages() As String = defaults.stringArrayForKey("languages")
  Print title + ": " + defaults.stringForKey("fontName") + " " + _
    Str(defaults.integerForKey("fontSize")) + ", " + Join(languages, "+")
End Sub

If defaults.boolForKey("firstLaunch") Then
  Print "Welcome!"
  defaults.boolForKey("firstLaunch") = False
End If
describe "At first"

defaults.integerForKey("fontSize") = 14
defaults.setStringArrayValue "languages", Array("de")
describe "Chosen"

defaults.removeObjectForKey "fontSize"
defaults.removeObjectForKey "languages"
describe "Back to the factory settings"

If Not defaults.boolForKey("firstLaunch") Then Print "The welcome is not shown again."
