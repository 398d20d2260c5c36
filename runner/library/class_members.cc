// Members of the host's own classes: exceptions, Dictionary, FolderItem and Variant.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "runner/library/natives.h"
#include "runner/run/arrays.h"
#include "runner/run/values.h"

namespace runner {
namespace {

namespace files = std::filesystem;

const ObjectRef& objectIn(const Value& self) { return std::get<ObjectRef>(self); }

// --- properties that the host keeps

Value message(Machine& machine, const Value& self, const Value*) {
  return machine.host().property(objectIn(self), "Message");
}
Value setMessage(Machine& machine, const Value& self, const Value* a) {
  machine.host().setProperty(objectIn(self), "Message", a[0]);
  return {};
}
Value errorNumber(Machine& machine, const Value& self, const Value*) {
  return machine.host().property(objectIn(self), "ErrorNumber");
}
Value setErrorNumber(Machine& machine, const Value& self, const Value* a) {
  machine.host().setProperty(objectIn(self), "ErrorNumber", a[0]);
  return {};
}
Value stack(Machine& machine, const Value& self, const Value*) {
  Value lines = machine.host().property(objectIn(self), "Stack");
  return isNil(lines) ? newArray(machine, kString.arrayOf(), {}) : lines;
}
Value constructNumbered(Machine& machine, const Value& self, const Value* a) {
  setMessage(machine, self, a);
  return setErrorNumber(machine, self, a + 1);
}

constexpr NativeRow kExceptionMembers[] = {
    {"Constructor", [](Machine&, const Value&, const Value*) { return Value(); }},
    {"Constructor(message As String)", setMessage},
    {"Constructor(message As String, errorNumber As Integer)", constructNumbered},
    {"Message As String", message, setMessage},
    {"ErrorNumber As Integer", errorNumber, setErrorNumber},
    {"Stack As String()", stack},
};

// --- Dictionary

Value count(Machine& machine, const Value& self, const Value*) {
  return machine.host().property(objectIn(self), "Count");
}
[[noreturn]] void failToFindKey(Machine& machine, const Value& key) {
  machine.raise("KeyNotFoundException",
                "The Dictionary has no key " + machine.host().describe(key) + ".");
}
Value valueOfKey(Machine& machine, const Value& self, const Value* a) {
  if (std::optional<Value> found = machine.host().lookUp(objectIn(self), a[0])) return *found;
  failToFindKey(machine, a[0]);
}
Value hasKey(Machine& machine, const Value& self, const Value* a) {
  return booleanValue(machine.host().hasKey(objectIn(self), a[0]));
}
Value lookup(Machine& machine, const Value& self, const Value* a) {
  return machine.host().lookUp(objectIn(self), a[0]).value_or(a[1]);
}
Value remove(Machine& machine, const Value& self, const Value* a) {
  if (!machine.host().removeKey(objectIn(self), a[0])) failToFindKey(machine, a[0]);
  return {};
}
Value removeAll(Machine& machine, const Value& self, const Value*) {
  for (const auto& [key, value] : machine.host().entries(objectIn(self)))
    machine.host().removeKey(objectIn(self), key);
  return {};
}
template <auto part>
Value list(Machine& machine, const Value& self, const Value*) {
  std::vector<Value> parts;
  for (const auto& entry : machine.host().entries(objectIn(self))) parts.push_back(entry.*part);
  return newArray(machine, kVariant.arrayOf(), parts);
}
Value clone(Machine& machine, const Value& self, const Value*) {
  return machine.host().dictionary(machine.host().entries(objectIn(self)));
}

Value ofPairs(Machine& machine, const Value&, const Value* a) {
  host::Entries entries;
  for (const Value& pair : machine.host().elements(std::get<ObjectRef>(a[0])))
    entries.emplace_back(fieldOf(pair, 0), fieldOf(pair, 1));
  return machine.host().dictionary(entries);
}

using Entry = host::Entries::value_type;

constexpr NativeRow kDictionary[] = {
    {"Constructor", [](Machine&, const Value&, const Value*) { return Value(); }},
    {"Constructor(ParamArray entries As Pair) As Dictionary", ofPairs},
    {"Count As Integer", count},
    {"KeyCount As Integer", count},
    {"Value(key As Variant) As Variant", valueOfKey},
    {"HasKey(key As Variant) As Boolean", hasKey},
    {"Lookup(key As Variant, default As Variant) As Variant", lookup},
    {"Remove(key As Variant)", remove},
    {"RemoveAll", removeAll},
    {"Clear", removeAll},
    {"Keys As Variant()", list<&Entry::first>},
    {"Values As Variant()", list<&Entry::second>},
    {"Clone As Dictionary", clone},
};

// --- Pair

template <std::size_t part>
Value partOfPair(Machine&, const Value& self, const Value*) {
  return fieldOf(self, part);
}
Value setPair(Machine&, const Value& self, const Value* a) {
  fieldOf(self, 0) = a[0];
  fieldOf(self, 1) = a[1];
  return {};
}

constexpr NativeRow kPair[] = {
    {"Constructor(left As Variant, right As Variant)", setPair},
    {"Left As Variant", partOfPair<0>},
    {"Right As Variant", partOfPair<1>},
};

// --- FolderItem

files::path pathOf(Machine& machine, const Value& self) {
  return machine.host().pathOf(objectIn(self));
}
Value item(Machine& machine, const files::path& path) { return machine.host().folderItem(path); }

Value newItem(Machine& machine, const Value&, const Value* a) {
  if (textOf(a[0]).empty()) machine.raise("InvalidArgumentException", "A FolderItem needs a path.");
  return item(machine, files::absolute(textOf(a[0])).lexically_normal());
}
Value nativePath(Machine& machine, const Value& self, const Value*) {
  return pathOf(machine, self).native();
}
Value name(Machine& machine, const Value& self, const Value*) {
  return pathOf(machine, self).filename().native();
}
Value exists(Machine& machine, const Value& self, const Value*) {
  std::error_code none;
  return booleanValue(files::exists(pathOf(machine, self), none));
}
Value isFolder(Machine& machine, const Value& self, const Value*) {
  std::error_code none;
  return booleanValue(files::is_directory(pathOf(machine, self), none));
}
Value parent(Machine& machine, const Value& self, const Value*) {
  const files::path path = pathOf(machine, self);
  return path == path.root_path() ? Value(ObjectRef()) : item(machine, path.parent_path());
}
Value child(Machine& machine, const Value& self, const Value* a) {
  return item(machine, pathOf(machine, self) / textOf(a[0]));
}
Value createFolder(Machine& machine, const Value& self, const Value*) {
  std::error_code none;
  files::create_directory(pathOf(machine, self), none);
  return {};
}
Value deleteItem(Machine& machine, const Value& self, const Value*) {
  std::error_code none;
  files::remove(pathOf(machine, self), none);
  return {};
}

constexpr NativeRow kFolderItem[] = {
    {"Constructor(path As String) As FolderItem", newItem},
    {"NativePath As String", nativePath},
    {"ShellPath As String", nativePath},
    {"Name As String", name},
    {"Exists As Boolean", exists},
    {"Directory As Boolean", isFolder},
    {"IsFolder As Boolean", isFolder},
    {"Parent As FolderItem", parent},
    {"Child(name As String) As FolderItem", child},
    {"CreateFolder", createFolder},
    {"Delete", deleteItem},
};

// --- SpecialFolder

Value folderAt(Machine& machine, const files::path& path) { return item(machine, path); }
files::path home() {
  const char* const found = std::getenv("HOME");
  return found == nullptr ? "/" : found;
}
template <const char* const& name>
Value inHome(Machine& machine, const Value&, const Value*) {
  return folderAt(machine, (home() / name).lexically_normal());
}
constexpr const char* kDesktop = "Desktop";
constexpr const char* kDocuments = "Documents";
constexpr const char* kSettings = ".config";
Value userHome(Machine& machine, const Value&, const Value*) { return folderAt(machine, home()); }
Value temporary(Machine& machine, const Value&, const Value*) {
  return folderAt(machine, files::temp_directory_path());
}

constexpr NativeRow kSpecialFolder[] = {
    {"UserHome As FolderItem", userHome},
    {"Desktop As FolderItem", inHome<kDesktop>},
    {"Documents As FolderItem", inHome<kDocuments>},
    {"ApplicationData As FolderItem", inHome<kSettings>},
    {"Preferences As FolderItem", inHome<kSettings>},
    {"Temporary As FolderItem", temporary},
};

constexpr NativeRow kFileFunctions[] = {
    {"GetFolderItem(path As String) As FolderItem", newItem},
};

// --- Variant

Value type(Machine& machine, const Value& self, const Value*) {
  return machine.host().typeOf(self);
}
Value isNull(Machine&, const Value& self, const Value*) { return booleanValue(isNil(self)); }
Value isNumeric(Machine& machine, const Value& self, const Value*) {
  return booleanValue(typeOf(machine, self).isNumber());
}
Value isArray(Machine& machine, const Value& self, const Value*) {
  return booleanValue(typeOf(machine, self).isArray());
}
template <const Type& to>
Value as(Machine& machine, const Value& self, const Value*) {
  return converted(machine, self, to);
}

constexpr NativeRow kVariantMembers[] = {
    {"Type As Integer", type},
    {"IsNull As Boolean", isNull},
    {"IsNumeric As Boolean", isNumeric},
    {"IsArray As Boolean", isArray},
    {"StringValue As String", as<kString>},
    {"IntegerValue As Integer", as<kInteger>},
    {"Int32Value As Integer", as<kInteger>},
    {"Int64Value As Int64", as<kInt64>},
    {"SingleValue As Single", as<kSingle>},
    {"DoubleValue As Double", as<kDouble>},
    {"BooleanValue As Boolean", as<kBoolean>},
    {"CurrencyValue As Currency", as<kCurrency>},
    {"ColorValue As Color", as<kColor>},
    {"DateValue As Date", as<kDate>},
    {"ObjectValue As Object", as<kAnyObject>},
};

// --- Color

std::uint32_t rgbOf(const Value& color) { return std::get<host::Color>(color).rgb; }

template <unsigned shift>
Value shade(Machine&, const Value& self, const Value*) {
  return static_cast<std::int32_t>((rgbOf(self) >> shift) & 0xFFU);
}
Value rgb(Machine&, const Value&, const Value* a) {
  const auto byte = [](const Value& value) {
    return static_cast<std::uint32_t>(integerOf(value)) & 0xFFU;
  };
  return host::Color{byte(a[0]) << 16U | byte(a[1]) << 8U | byte(a[2])};
}

constexpr NativeRow kColorMembers[] = {
    {"Red As Integer", shade<16>},
    {"Green As Integer", shade<8>},
    {"Blue As Integer", shade<0>},
};
constexpr NativeRow kColorFunctions[] = {
    {"RGB(red As Integer, green As Integer, blue As Integer) As Color", rgb},
};

}  // namespace

std::span<const NativeRow> specialFolderMembers() { return kSpecialFolder; }
std::span<const NativeRow> colorMembers() { return kColorMembers; }
std::span<const NativeRow> colorFunctions() { return kColorFunctions; }
std::span<const NativeRow> exceptionMembers() { return kExceptionMembers; }
std::span<const NativeRow> dictionaryMembers() { return kDictionary; }
std::span<const NativeRow> pairMembers() { return kPair; }
std::span<const NativeRow> folderItemMembers() { return kFolderItem; }
std::span<const NativeRow> fileFunctions() { return kFileFunctions; }
std::span<const NativeRow> variantMembers() { return kVariantMembers; }

}  // namespace runner
