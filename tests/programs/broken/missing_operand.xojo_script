' Missing operand.
Dim n As Integer = 5 +
