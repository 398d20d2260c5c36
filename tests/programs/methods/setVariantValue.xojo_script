Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.setVariantValue("v", 5)
Print d.variantForKey("v")
d.setVariantValue("v", "text")
Print d.variantForKey("v")
Dim values As New Dictionary
values.Value("k") = Array(1, 2)
d.setVariantValue "v", values
Dim back As Dictionary = d.variantForKey("v")
Dim list() As Variant = back.Value("k")
Print Str(list.Count) + " " + list(1)
d.setVariantValue("v", Nil)
Print Str(d.variantForKey("v") Is Nil)
