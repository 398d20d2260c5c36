' Unknown function.
Dim s As String = Uppercas("a")
