' Texts are equal without regard to case, as keys of a Dictionary too; keys in the store aren't.
Dim names As New Dictionary
names.Value("Größe") = 1
names.Value("GRÖSSE") = 2
Print Str(names.Count) + " " + names.Key(0).StringValue + " " + names.Value("größe").StringValue
Print Str(names.HasKey("gröSSe")) + Str(names.HasKey("große"))

Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.integerForKey("K") = 1
d.integerForKey("k") = 2
Print Str(d.integerForKey("K")) + " " + Str(d.integerForKey("k"))

' As a Dictionary they are one entry, with one of the two values.
Dim all As Dictionary = d.dictionaryRepresentation
Dim found As Integer
For Each key As Variant In all.Keys
  If key.StringValue = "k" Then found = found + 1
Next
Print Str(found)
Dim value As Integer = all.Value("K").IntegerValue
Print Str(value = 1 Or value = 2) + Str(all.Value("k").IntegerValue = value)
