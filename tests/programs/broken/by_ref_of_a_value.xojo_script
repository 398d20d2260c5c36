' By ref of a value.
Sub twice(ByRef n As Integer)
  n = n * 2
End Sub
twice 5
