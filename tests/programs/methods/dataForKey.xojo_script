Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(d.dataForKey("unset") Is Nil)
Dim m As New MemoryBlock(4)
m.Byte(0) = 0
m.Byte(1) = 1
m.Byte(2) = 254
m.Byte(3) = 255
d.dataForKey("bytes") = m
Dim back As MemoryBlock = d.dataForKey("bytes")
Print Str(back.Size) + " " + EncodeHex(back)
d.dataForKey("bytes") = "text as bytes"
Dim text As String = d.dataForKey("bytes")
Print text
d.dataForKey("bytes") = Nil
Print Str(d.dataForKey("bytes") Is Nil)
