' Not an exception.
Raise "went wrong"
