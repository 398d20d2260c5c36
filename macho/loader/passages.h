// The ways out of a bundle and into it: functions, wrapped so that the native exceptions which they
// raise reach their callers in the callers' own way. A wrapping takes arguments of any types, 256
// bytes of them. The same function gets the same wrapping, which lives as long as the process.
#pragma once

namespace macho {

/// A function of this system, for a bundle to call: a native exception goes to the innermost frame
/// (frames.h). The result can be of any type but a structure.
void* outward(void* function);
/// The same for a messenger of macOS that gives back a structure: the function is called with the
/// address for the structure as a first argument of its own, and gives back nothing.
void* outwardForStructure(void* function);
/// A function of a bundle, for this system to call: enterBundle() around it. The result can be of
/// any type but a structure. Calling it when the bundle is gone is a mistake.
void* inward(void* function);

}  // namespace macho
