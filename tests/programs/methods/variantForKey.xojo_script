Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(d.variantForKey("unset") Is Nil)
d.variantForKey("v") = 7
Dim v As Variant = d.variantForKey("v")
Print Str(v.Type) + " " + v
d.variantForKey("v") = "text"
Print Str(d.variantForKey("v").Type) + " " + d.variantForKey("v")
d.variantForKey("v") = 2.5
Print Str(d.variantForKey("v").DoubleValue)
d.variantForKey("v") = True
Print Str(d.variantForKey("v").BooleanValue)
d.variantForKey("v") = New Date(2024, 2, 29, 23, 59, 58)
Print d.variantForKey("v").DateValue.SQLDateTime
d.variantForKey("v") = Array("a", "b")
Dim list() As Variant = d.variantForKey("v")
Print list(0) + list(1)
Dim big As Int64 = 1099511627776
d.variantForKey("v") = big
Print Str(d.variantForKey("v").Int64Value)
d.variantForKey("v") = Nil
Print Str(d.variantForKey("v").IsNull)
