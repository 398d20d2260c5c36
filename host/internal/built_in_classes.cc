#include "host/internal/built_in_classes.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/internal/dictionaries.h"
#include "host/internal/entry_points.h"
#include "host/internal/exceptions.h"
#include "host/internal/folder_items.h"
#include "host/internal/memory_blocks.h"
#include "host/internal/properties.h"

namespace host::internal {
namespace {

struct BuiltIn {
  const char* name;
  const char* superName;  // nullable
  std::vector<const char*> properties;
  ObjectFactory create;  // null: as the super class does
};

template <class T>
std::unique_ptr<HostObject> create(std::shared_ptr<const HostClass> objectClass) {
  return std::make_unique<T>(std::move(objectClass));
}

const std::vector<BuiltIn>& builtIns() {
  static const std::vector<BuiltIn> kClasses = {
      {kExceptionClass, nullptr, {"Message as string", "ErrorNumber as integer"}, nullptr},
      {"UnsupportedOperationException", kExceptionClass, {}, nullptr},
      {"OutOfMemoryException", kExceptionClass, {}, nullptr},
      {kOutOfBounds, kExceptionClass, {}, nullptr},
      {"KeyNotFoundException", kExceptionClass, {}, nullptr},
      {"StackOverflowException", kExceptionClass, {}, nullptr},
      {"NSExceptionZEL", kExceptionClass, {}, nullptr},
      {"Date",
       nullptr,
       {"Year as integer", "Month as integer", "Day as integer", "Hour as integer",
        "Minute as integer", "Second as integer"},
       nullptr},
      {"Dictionary", nullptr, {"Count as integer"}, create<HostDictionary>},
      {"FolderItem", nullptr, {}, create<HostFolderItem>},
      {"MemoryBlock", nullptr, {}, create<HostMemoryBlock>},
  };
  return kClasses;
}

}  // namespace

void addBuiltInClasses(Classes& classes) {
  for (const BuiltIn& builtIn : builtIns()) {
    const auto added = std::make_shared<HostClass>();
    added->description.name = builtIn.name;
    added->description.methods = methodsOf(builtIn.name);
    added->create = builtIn.create;
    for (const char* const declaration : builtIn.properties)
      added->properties.push_back(parseProperty(declaration));
    if (builtIn.superName != nullptr) {
      added->description.superName = builtIn.superName;
      added->super = classes.find(builtIn.superName);
    }
    classes.add(added);
  }
}

}  // namespace host::internal
