#tag Class
Protected Class App
Inherits ConsoleApplication
	#tag Event
		Function Run(args() as String) As Integer
		  // Counts its starts, and remembers who used it last: start it more than once, with a name.
		  Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults
		  
		  // What the program comes with, until somebody chooses.
		  Dim factory As New Dictionary
		  factory.Value("user") = "nobody"
		  d.registerDefaults(factory)
		  
		  Dim starts As Integer = d.integerForKey("starts") + 1
		  d.integerForKey("starts") = starts
		  Print "Start number " + Str(starts) + ". Before, it was used by " + d.stringForKey("user") + "."
		  
		  // The first argument is the program itself.
		  If args.Ubound > 0 Then d.stringForKey("user") = args(1)
		  
		  // What Foundation rejects arrives as an exception.
		  Try
		    d.stringForKey("") = "no key"
		    Print "This is never printed."
		  Catch e As NSExceptionZEL
		    Print "An empty key is rejected."
		  End Try
		  
		  If Not d.synchronize Then
		    Print "The preferences could not be written."
		    Return 1
		  End If
		  Return 0
		End Function
	#tag EndEvent


	#tag ViewBehavior
	#tag EndViewBehavior
End Class
#tag EndClass
