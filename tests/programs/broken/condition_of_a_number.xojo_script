' Condition of a number.
Dim n As Integer = 1
While n
  n = 0
Wend
