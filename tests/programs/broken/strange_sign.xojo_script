' Strange sign.
Dim n As Integer = 5 ? 6
