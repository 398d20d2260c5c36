' Bytes of a picture, and data within data.

Dim defaults As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults

' A picture of two by two points, three bytes each.
Dim picture As New MemoryBlock(12)
For i As Integer = 0 To picture.Size - 1
  picture.Byte(i) = i * 20
Next
defaults.dataForKey("icon") = picture

Dim icon As MemoryBlock = defaults.dataForKey("icon")
Print Str(icon.Size) + " bytes: " + EncodeHex(icon)

' Albums are a list of dictionaries, each with a list of pictures.
Function album(title As String, count As Integer) As Dictionary
  Dim pictures() As Variant
  For i As Integer = 1 To count
    Dim one As New Dictionary
    one.Value("name") = title + " " + Str(i)
    one.Value("thumbnail") = picture
    one.Value("taken") = New Date(2024, 7, i)
    pictures.Append one
  Next
  Dim made As New Dictionary
  made.Value("title") = title
  made.Value("pictures") = pictures
  Return made
End Function

Dim albums() As Variant
albums.Append album("Alps", 2)
albums.Append album("Sea", 1)
defaults.setArrayValue "albums", albums

For Each stored As Variant In defaults.arrayForKey("albums")
  Dim one As Dictionary = stored
  Print one.Value("title")
  Dim pictures() As Variant = one.Value("pictures")
  For Each found As Variant In pictures
    Dim entry As Dictionary = found
    Dim thumbnail As MemoryBlock = entry.Value("thumbnail")
    Print "  " + entry.Value("name") + ", " + entry.Value("taken").DateValue.SQLDate + ", " + _
      Str(thumbnail.Size) + " bytes"
  Next
Next
