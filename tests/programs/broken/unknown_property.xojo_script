' Unknown property.
Dim when As New Date(2020, 1, 1)
Print Str(when.Yaer)
