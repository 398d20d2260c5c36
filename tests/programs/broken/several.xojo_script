' Several.
Dim a As Integr
Prnt "x"
Dim n As Integer = "5"
Print Str(n)
