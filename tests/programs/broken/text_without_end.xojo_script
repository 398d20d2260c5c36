' Text without end.
Print "open
