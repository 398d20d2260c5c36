Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim list() As Variant
list.Append 1
list.Append Nil
list.Append "last"
d.setArrayValue("list", list)
' What is nothing isn't kept.
Print Str(d.arrayForKey("list").Ubound) + " " + d.arrayForKey("list")(1)
Redim list(-1)
d.setArrayValue "list", list
Print Str(d.arrayForKey("list").Ubound)
