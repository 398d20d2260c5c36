// Classes of a program, and their objects: objects of the host whose instance data leads to the
// fields.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "runner/run/machine.h"
#include "runner/run/types.h"

namespace runner {

/// A Sub or Function of the program, as it runs. Its parameters are the first slots of its frame;
/// a method of objects has the object before them.
struct UserMethod {
  std::string name;
  std::size_t slotCount = 0;
  Action body;
  Value initialResult;
};

struct ProgramClass {
  Type type;
  const ProgramClass* super = nullptr;  // nullable: a class of the host or of a plugin, or none
  std::vector<Type> fields = {};        // by slot, those of the classes above first
  std::vector<const UserMethod*> methods = {};  // by slot: the one that objects of the class have
  UserMethod prepare = {};  // gives the class's own fields their values; the object is slot 0
};

/// A new object of a class, its fields prepared; no constructor has run.
Value newInstance(Machine& machine, const ProgramClass& itsClass);
/// A field of an object, which isn't Nil and is of a program's class.
Value& fieldOf(const Value& object, std::size_t slot);
/// The class that an object was made of; null for one that newInstance hasn't made.
/// @param object of a program's class.
const ProgramClass* classOf(const Value& object);

/// Makes a class known to the host, in place of an earlier one of its name.
void establish(Machine& machine, const ProgramClass& added);

}  // namespace runner
