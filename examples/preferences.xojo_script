' The preferences of a small application: where its window stands, and which files it had open.

Const kRecentFiles = 3

Dim defaults As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults

Sub saveWindow(left As Integer, top As Integer, width As Integer, height As Integer)
  Dim window As New Dictionary
  window.Value("left") = left
  window.Value("top") = top
  window.Value("width") = width
  window.Value("height") = height
  defaults.dictionaryForKey("window") = window
End Sub

Function describeWindow() As String
  Dim window As Dictionary = defaults.dictionaryForKey("window")
  If window Is Nil Then Return "in the middle of the screen"
  Return window.Value("width") + " x " + window.Value("height") + " at " + _
    window.Value("left") + ", " + window.Value("top")
End Function

' Puts a file at the head of the list, once.
Sub rememberFile(path As String)
  Dim recent() As String = defaults.stringArrayForKey("recentFiles")
  Dim at As Integer = recent.IndexOf(path)
  If at >= 0 Then recent.Remove at
  recent.Insert 0, path
  While recent.Count > kRecentFiles
    recent.Remove recent.LastIndex
  Wend
  defaults.setStringArrayValue "recentFiles", recent
End Sub

Print "The first time the window stands " + describeWindow + "."
saveWindow 120, 80, 640, 480
Print "Next time it stands " + describeWindow + "."

For Each path As String In Split("letter.txt,notes.txt,plan.txt,letter.txt,photo.png", ",")
  rememberFile path
Next
Print "Recent files: " + Join(defaults.stringArrayForKey("recentFiles"), ", ")

' Every getter of one value can be assigned to.
defaults.boolForKey("showToolbar") = True
defaults.doubleForKey("zoom") = 1.25
defaults.integerForKey("launchCount") += 1
Print "Launch number " + Str(defaults.integerForKey("launchCount")) + ", zoom " + _
  Format(defaults.doubleForKey("zoom"), "0%")

If Not defaults.synchronize Then Print "The preferences could not be written."
