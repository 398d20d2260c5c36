Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(d.arrayForKey("unset").Ubound)
d.setArrayValue "list", Array(1, "two", 3.5, True)
Dim list() As Variant = d.arrayForKey("list")
For Each v As Variant In list
  Print Str(v.Type) + " " + v
Next
Dim nested() As Variant
nested.Append list
nested.Append New Date(2001, 2, 3)
d.setArrayValue "list", nested
Dim first() As Variant = d.arrayForKey("list")(0)
Print first(1)
Print d.arrayForKey("list")(1).DateValue.SQLDate
