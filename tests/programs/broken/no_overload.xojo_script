' No overload.
Print Str(Abs("5"))
