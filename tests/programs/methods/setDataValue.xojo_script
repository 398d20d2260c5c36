Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Dim m As New MemoryBlock(2)
m.Byte(0) = 65
m.Byte(1) = 200
d.setDataValue("bytes", m)
Print EncodeHex(d.dataForKey("bytes"))
' The bytes were copied.
m.Byte(0) = 0
Print EncodeHex(d.dataForKey("bytes"))
d.setDataValue("bytes", Nil)
Print Str(d.dataForKey("bytes") Is Nil)
