' Declared twice.
Dim n As Integer
Dim n As String
