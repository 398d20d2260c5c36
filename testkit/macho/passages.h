// The ways out of a bundle: functions of this system, wrapped so that the native exceptions which
// they raise reach the bundle in its own way.
#pragma once

namespace testkit::macho {

/// A function that calls the given one with its own arguments and gives back its result, whatever
/// their types. A native exception goes to the innermost frame (frames.h). Of the arguments, 256
/// bytes pass. The same function gets the same wrapping, which lives as long as the process.
void* outward(void* function);
/// The same for a messenger of macOS that gives back a structure: the function is called with the
/// address for the structure as a first argument of its own, and gives back nothing.
void* outwardForStructure(void* function);

}  // namespace testkit::macho
