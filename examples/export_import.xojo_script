' Takes a whole domain out as lines of text, and makes a domain of such lines again.

Dim defaults As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults

' A value as "type:text"; a list or dictionary would need a deeper notation.
Function encoded(v As Variant) As String
  Select Case v.Type
  Case 2, 3
    Return "number:" + v
  Case 5
    Return "real:" + v
  Case 7
    Return "date:" + v.DateValue.SQLDateTime
  Case 11
    Return "boolean:" + v
  End Select
  If v IsA MemoryBlock Then
    Dim block As MemoryBlock = v
    Return "data:" + EncodeHex(block)
  End If
  Return "text:" + v
End Function

Function decoded(text As String) As Variant
  Dim kind As String = NthField(text, ":", 1)
  Dim rest As String = Mid(text, Len(kind) + 2)
  Select Case kind
  Case "number"
    Return rest.ToInteger
  Case "real"
    Return Val(rest)
  Case "boolean"
    Return rest = "True"
  Case "data"
    Dim block As MemoryBlock = DecodeHex(rest)
    Return block
  Case "date"
    Dim when As New Date(2000, 1, 1)
    when.SQLDateTime = rest
    Return when
  End Select
  Return rest
End Function

Function exported(name As String) As String()
  Dim lines() As String
  Dim domain As Dictionary = defaults.persistentDomainForName(name)
  For Each key As Variant In domain.Keys
    lines.Append key + "=" + encoded(domain.Value(key))
  Next
  lines.Sort
  Return lines
End Function

Sub import(lines() As String, name As String)
  Dim domain As New Dictionary
  For Each line As String In lines
    Dim key As String = NthField(line, "=", 1)
    domain.Value(key) = decoded(Mid(line, Len(key) + 2))
  Next
  defaults.setPersistentDomain domain, name
End Sub

Dim domain As New Dictionary
domain.Value("title") = "Entwurf: Grüße"
domain.Value("pages") = 12
domain.Value("ratio") = 0.75
domain.Value("draft") = True
domain.Value("changed") = New Date(2024, 12, 24, 18, 30, 0)
domain.Value("checksum") = MemoryBlock(DecodeHex("00FF10"))
defaults.setPersistentDomain domain, "com.example.original"

Dim lines() As String = exported("com.example.original")
For Each line As String In lines
  Print line
Next

import lines, "com.example.copy"
Print "The copy is the same: " + _
  Str(Join(exported("com.example.copy")) = Join(lines))
Print "Its pages: " + defaults.persistentDomainForName("com.example.copy").Value("pages")
