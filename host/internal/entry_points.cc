#include "host/internal/entry_points.h"

#include <algorithm>
#include <typeinfo>

#include "host/internal/dictionaries.h"
#include "host/internal/exceptions.h"
#include "host/internal/folder_items.h"
#include "host/internal/memory_blocks.h"
#include "host/internal/methods.h"
#include "host/internal/properties.h"
#include "host/internal/registration.h"
#include "host/internal/state.h"
#include "host/internal/variants.h"

namespace host::internal {
namespace {

double getVersion(State& state) { return state.options.version.value_or(0.0); }
void* loadGlobalMethod(State& state, zel::REALobject object, const char* declaration);

// An entry point as the plugin sees it: a C function that counts the call and, unless it is told to
// fail, has the current host serve it.
template <zel::Name name, auto service>
struct EntryPoint;

template <zel::Name name, class R, class... Arguments, R (*service)(State&, Arguments...)>
struct EntryPoint<name, service> {
  using Signature = R(Arguments...);

  static R call(Arguments... arguments) {
    State& state = currentState(name.text);
    return state.control.call(name.text) ? service(state, arguments...) : R();
  }
};

struct Row {
  std::string_view name;
  void* function;
  const std::type_info* signature;
};

template <zel::Name name, auto service>
Row row() {
  using Point = EntryPoint<name, service>;
  return {name.text, reinterpret_cast<void*>(&Point::call), &typeid(typename Point::Signature)};
}

const std::vector<Row>& entryPoints() {
  static const std::vector<Row> kRows = {
      row<"RegisterPluginVersion", registerPluginVersion>(),
      row<"REALGetRBVersion", getVersion>(),
      row<"PluginRegisterClass", registerClass>(),
      // objects and instances
      row<"REALLockObject", lockObject>(),
      row<"REALUnlockObject", unlockObject>(),
      row<"PluginNewInstance", newInstance>(),
      row<"RuntimeRaiseException", raiseException>(),
      row<"RuntimeObjectIsa", objectIsA>(),
      row<"pluginObjectType", getClassRef>(),
      row<"REALLoadObjectMethod", loadObjectMethod>(),
      row<"REALLoadGlobalMethod", loadGlobalMethod>(),
      // properties
      row<"REALGetPropValueInt", getPropertyValue<std::int32_t>>(),
      row<"REALGetPropValueInt64", getPropertyValue<std::int64_t>>(),
      row<"REALGetPropValueSingle", getPropertyValue<float>>(),
      row<"REALGetPropValueDouble", getPropertyValue<double>>(),
      row<"REALGetPropValueString", getPropertyValue<zel::REALstring>>(),
      row<"REALGetPropValueObject", getPropertyValue<zel::REALobject>>(),
      row<"REALSetPropValueInt", setPropertyValue<std::int32_t>>(),
      row<"REALSetPropValueString", setPropertyValue<zel::REALstring>>(),
      // variants
      row<"StringToVariant", stringToVariant>(),
      row<"Int32ToVariant", numberToVariant<std::int32_t>>(),
      row<"UInt32ToVariant", numberToVariant<std::uint32_t>>(),
      row<"Int64ToVariant", numberToVariant<std::int64_t>>(),
      row<"UInt64ToVariant", numberToVariant<std::uint64_t>>(),
      row<"SingleToVariant", numberToVariant<float>>(),
      row<"DoubleToVariant", numberToVariant<double>>(),
      row<"BooleanToVariant", booleanToVariant>(),
      row<"VariantToInt32", variantTo<std::int32_t>>(),
      row<"VariantToInt64", variantTo<std::int64_t>>(),
      row<"VariantToSingle", variantTo<float>>(),
      row<"VariantToDouble", variantTo<double>>(),
      row<"VariantToString", variantToString>(),
      // strings
      row<"REALLockString", lockString>(),
      row<"REALUnlockString", unlockString>(),
      row<"REALBuildString", buildString>(),
      row<"REALSetStringEncoding", setStringEncoding>(),
      row<"REALGetStringEncoding", getStringEncoding>(),
      row<"REALConvertString", convertString>(),
      row<"REALGetStringCFString", copyStringCFString>(),
      row<"PluginGetStringData", getStringData>(),
      row<"PluginDisposeStringData", disposeStringData>(),
      row<"StringGetCString", getCString>(),
      // arrays
      row<"RuntimeArrayCreateSingleDimBoundedArray", createArray>(),
      row<"RuntimeUBound", arrayUpperBound>(),
      row<"RuntimeDirectReadStringArray", readStringArray>(),
      row<"RuntimeDirectReadObjectArray", readObjectArray>(),
      row<"RuntimeArrayDirectGetInsertProc", arrayInsertProcedure>(),
      row<"RuntimeArrayDirectGetGetProc", arrayReadProcedure>(),
      // memory blocks and files
      row<"newMemoryBlock", newMemoryBlock>(),
      row<"memoryBlockGetPtr", memoryBlockPointer>(),
      row<"memoryBlockGetSize", memoryBlockSize>(),
      row<"FolderItemFromFSSpec", folderItemFromFSSpec>(),
      row<"REALFSSpecFromFolderItem", fsSpecFromFolderItem>(),
      row<"REALFSRefFromFolderItem", fsRefFromFolderItem>(),
      row<"REALFolderItemFromParentFSRef", folderItemFromParentFSRef>(),
  };
  return kRows;
}

const Row* findRow(std::string_view name) {
  const std::vector<Row>& rows = entryPoints();
  const auto found =
      std::find_if(rows.begin(), rows.end(), [name](const Row& row) { return row.name == name; });
  return found == rows.end() ? nullptr : &*found;
}

struct GlobalMethod {
  Row row;
  Declaration declaration;
};

const std::vector<GlobalMethod>& globalMethods() {
  static const std::vector<GlobalMethod> kMethods = {
      {row<"LenB", lenB>(), parseDeclaration("LenB( s as string ) as integer")},
      {row<"VarType", varType>(), parseDeclaration("VarType(value As Variant) As Int32")},
  };
  return kMethods;
}

struct ClassMethod {
  std::string_view className;
  Row row;
  const char* declaration;
};

const std::vector<ClassMethod>& classMethods() {
  static const std::vector<ClassMethod> kMethods = {
      {"Dictionary", row<"Dictionary.Value", dictionaryValue>(),
       "Value(key As Variant) As Variant"},
      {"Dictionary", row<"Dictionary.SetValue", setDictionaryValue>(),
       "Value(key As Variant, Assigns _value As Variant)"},
      {"Dictionary", row<"Dictionary.Key", dictionaryKey>(), "Key(index As Integer) As Variant"},
      {"FolderItem", row<"FolderItem.TrueItem", trueItem>(),
       "TrueItem(Index as integer) as Folderitem"},
  };
  return kMethods;
}

void* loadGlobalMethod(State& state, zel::REALobject object, const char* declaration) {
  constexpr std::string_view kWho = "REALLoadGlobalMethod";
  if (object != nullptr) state.failures.report(std::string(kWho) + " was given an object");
  const std::optional<Declaration> wanted = declarationFor(state, declaration, kWho);
  if (object != nullptr || !wanted) return nullptr;
  const std::vector<GlobalMethod>& methods = globalMethods();
  const auto found = std::find_if(methods.begin(), methods.end(), [&wanted](const auto& method) {
    return sameSignature(method.declaration, *wanted);
  });
  if (found == methods.end() || !state.control.lookUp(found->row.name)) return nullptr;
  return outward(state, found->row.function);
}

}  // namespace

std::vector<std::string> entryPointNames() {
  std::vector<std::string> names;
  for (const Row& row : entryPoints()) names.emplace_back(row.name);
  for (const GlobalMethod& method : globalMethods()) names.emplace_back(method.row.name);
  for (const ClassMethod& method : classMethods()) names.emplace_back(method.row.name);
  return names;
}

std::vector<RegisteredMethod> methodsOf(std::string_view className) {
  std::vector<RegisteredMethod> methods;
  for (const ClassMethod& method : classMethods()) {
    if (method.className != className) continue;
    methods.push_back({method.declaration, parseDeclaration(method.declaration),
                       reinterpret_cast<PluginFunction>(method.row.function), nullptr, 0});
  }
  return methods;
}

std::string_view nameOfMethod(PluginFunction function) {
  const std::vector<ClassMethod>& methods = classMethods();
  const auto found = std::find_if(methods.begin(), methods.end(), [function](const auto& method) {
    return method.row.function == reinterpret_cast<void*>(function);
  });
  return found == methods.end() ? std::string_view() : found->row.name;
}

void* findEntryPoint(std::string_view name) {
  const Row* const row = findRow(name);
  return row == nullptr ? nullptr : row->function;
}

const std::type_info* signatureOf(std::string_view name) {
  const Row* const row = findRow(name);
  return row == nullptr ? nullptr : row->signature;
}

}  // namespace host::internal
