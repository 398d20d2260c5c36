' What can go wrong, and how a program sees it.

Dim defaults As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults

' A key that isn't set is no error: it reads as 0, False, the empty text, an empty list or Nil.
Print Str(defaults.integerForKey("unset")) + " " + Str(defaults.boolForKey("unset")) + " """ + _
  defaults.stringForKey("unset") + """ " + Str(defaults.arrayForKey("unset").Count) + " " + _
  Str(defaults.dictionaryForKey("unset") Is Nil)

' What Foundation rejects arrives as an exception; nothing is stored.
Try
  defaults.integerForKey("") = 5
  Print "This is never printed."
Catch e As NSExceptionZEL
  Print "Foundation rejects an empty key: " + Str(e.Message <> "")
End Try

' A domain of that name is there already.
Dim domain As New Dictionary
domain.Value("a") = 1
defaults.setVolatileDomain domain, "session"
Try
  defaults.setVolatileDomain domain, "session"
Catch e As RuntimeException
  Print "Caught by its general class as well: " + Str(e IsA NSExceptionZEL)
Finally
  defaults.removeVolatileDomainForName "session"
  Print "Cleaned up."
End Try

' An object is constructed once.
Try
  defaults.Constructor
Catch e As UnsupportedOperationException
  Print e.Message
End Try

' A dictionary tells of a key that it doesn't have.
Try
  Print domain.Value("b")
Catch e As KeyNotFoundException
  Print "No such key."
End Try

' A value of another type than was hoped for.
defaults.stringForKey("size") = "large"
Dim v As Variant = defaults.variantForKey("size")
Try
  Dim size As Dictionary = v
Catch e As TypeMismatchException
  Print e.Message
End Try
