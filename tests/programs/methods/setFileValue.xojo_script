Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
d.setFileValue("f", New FolderItem("/usr/bin/env"))
Print d.fileForKey("f").NativePath
Print Str(d.fileForKey("f").Exists) + Str(d.fileForKey("f").Directory)
d.setFileValue "f", GetFolderItem("/tmp")
Print d.fileForKey("f").NativePath
