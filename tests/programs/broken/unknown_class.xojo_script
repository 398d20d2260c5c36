' Unknown class.
Dim d As NSUserDefaultZEL
