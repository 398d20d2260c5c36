' Does nothing.
Dim n As Integer = 5
n
