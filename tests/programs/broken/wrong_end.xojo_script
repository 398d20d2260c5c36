' Wrong end.
For i As Integer = 1 To 3
  Print Str(i)
Wend
