' Return from a sub.
Sub show(s As String)
  Return s
End Sub
show "a"
