Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
Print Str(d.fileForKey("unset") Is Nil)
d.fileForKey("folder") = New FolderItem("/usr/lib")
Print d.fileForKey("folder").NativePath
Print d.fileForKey("folder").Name
d.fileForKey("folder") = d.fileForKey("folder").Parent
Print d.fileForKey("folder").NativePath
