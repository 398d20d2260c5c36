' Reserved word.
Dim next As Integer
