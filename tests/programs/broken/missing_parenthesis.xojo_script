' Missing parenthesis.
Print Str(Len("a")
