#include "testkit/host/entry_points.h"

#include <algorithm>
#include <iterator>
#include <typeinfo>

#include "testkit/host/exceptions.h"
#include "testkit/host/methods.h"
#include "testkit/host/properties.h"
#include "testkit/host/registration.h"
#include "testkit/host/state.h"

namespace testkit::host {
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
  };
  return kRows;
}

// What plugins may ask for and this host doesn't offer.
constexpr std::string_view kMissing[] = {
    "StringToVariant",          "Int32ToVariant",          "UInt32ToVariant",
    "Int64ToVariant",           "UInt64ToVariant",         "SingleToVariant",
    "DoubleToVariant",          "BooleanToVariant",        "newMemoryBlock",
    "memoryBlockGetPtr",        "memoryBlockGetSize",      "FolderItemFromFSSpec",
    "REALFSSpecFromFolderItem", "REALFSRefFromFolderItem", "REALFolderItemFromParentFSRef",
};

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
  return found->row.function;
}

}  // namespace

std::vector<std::string> entryPointNames() {
  std::vector<std::string> names(std::begin(kMissing), std::end(kMissing));
  for (const Row& row : entryPoints()) names.emplace_back(row.name);
  for (const GlobalMethod& method : globalMethods()) names.emplace_back(method.row.name);
  return names;
}

void* findEntryPoint(std::string_view name) {
  const Row* const row = findRow(name);
  return row == nullptr ? nullptr : row->function;
}

const std::type_info* signatureOf(std::string_view name) {
  const Row* const row = findRow(name);
  return row == nullptr ? nullptr : row->signature;
}

}  // namespace testkit::host
