' Constant changed.
Const kSize = 5
kSize = 6
