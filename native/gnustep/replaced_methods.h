// Replacing a method that a class of Foundation has. No message is sent, so that it can be done
// while the library is loaded, when some classes would set themselves up with the first one.
#pragma once

// A method of any type: to be cast from and to what it is.
typedef void (*AnyMethod)(void);

// Both replace it for good and give back the method that was there. The class itself has it, not
// one above it.
AnyMethod zelReplaceMethod(const char* className, const char* selector, AnyMethod method);
AnyMethod zelReplaceClassMethod(const char* className, const char* selector, AnyMethod method);
