' Not an array.
Dim n As Integer = 5
Print Str(n(0))
