#include "runner/library/library.h"

#include <algorithm>
#include <utility>

#include "runner/library/natives.h"

namespace runner {
namespace {

struct FurtherClass {
  const char* name;
  const char* superName;
};

constexpr FurtherClass kFurtherClasses[] = {
    {"IllegalCastException", "RuntimeException"},
    {"InvalidArgumentException", "RuntimeException"},
    {"NilObjectException", "RuntimeException"},
    {"TypeMismatchException", "RuntimeException"},
};

bool isConstructor(const Callable& callable) {
  return host::sameName(callable.declaration.name, "Constructor");
}

Candidates named(const Callables& callables, std::string_view name) {
  Candidates found;
  for (const auto& callable : callables)
    if (host::sameName(callable->declaration.name, name)) found.push_back(callable.get());
  return found;
}

void addNames(const Callables& callables, std::vector<std::string>& names) {
  for (const auto& callable : callables) names.push_back(callable->declaration.name);
}

// A declaration for arrays of a type: "T" stands for the type of their elements.
host::Declaration withElement(host::Declaration declaration, const Type& element) {
  const auto replace = [&element](host::Type& type) {
    if (type.name == "T") type.name = nameOf(element);
  };
  for (host::Parameter& parameter : declaration.parameters) replace(parameter.type);
  if (declaration.result) replace(*declaration.result);
  return declaration;
}

std::string textOfDeclaration(const host::Declaration& declaration) {
  std::string text = declaration.name;
  std::string parameters;
  for (const host::Parameter& parameter : declaration.parameters) {
    parameters += (parameters.empty() ? "" : ", ") + parameter.name + " As " + parameter.type.name +
                  (parameter.type.array ? "()" : "");
  }
  if (!parameters.empty()) text += "(" + parameters + ")";
  if (declaration.result)
    text += " As " + declaration.result->name + (declaration.result->array ? "()" : "");
  return text;
}

}  // namespace

Library::Library(host::Host& host) : types_(host) {
  addClasses(host);
  addFunctions(textFunctions(), true);
  addFunctions(numberFunctions(), true);
  addFunctions(hostFunctions(), false);
  addFunctions(fileFunctions(), false);
  addNative("RuntimeException", exceptionMembers());
  addNative("Dictionary", dictionaryMembers());
  addNative("Date", dateMembers());
  addNative("MemoryBlock", memoryBlockMembers());
  addNative("FolderItem", folderItemMembers());
  addNative("Variant", variantMembers());
  for (const auto& member : members_["Variant"].methods) member->onNil = true;
  addNative("System", systemMembers(), true);
  for (const std::string& name : host.classNames()) readRecords(*host.findClass(name));
}

void Library::addClasses(host::Host& host) {
  for (const FurtherClass& further : kFurtherClasses)
    if (host.findClass(further.name) == nullptr) host.addClass(further.name, further.superName);
  if (host.findClass("System") == nullptr) host.addClass("System", "");
}

std::unique_ptr<Callable> Library::described(const host::Declaration& declaration,
                                             std::string text) const {
  auto callable = std::make_unique<Callable>();
  callable->declaration = declaration;
  callable->text = std::move(text);
  // A class that nobody has registered has no objects but Nil.
  for (const host::Parameter& parameter : declaration.parameters)
    callable->parameters.push_back(types_.find(parameter.type).value_or(kAnyObject));
  if (declaration.result) callable->result = types_.find(*declaration.result).value_or(kAnyObject);
  callable->required = declaration.parameters.size();
  return callable;
}

std::unique_ptr<Callable> Library::setterOf(const Callable& getter) const {
  host::Declaration declaration = getter.declaration;
  declaration.parameters.push_back({"value", *declaration.result, false, true});
  declaration.result = std::nullopt;
  return described(declaration, getter.text);
}

void Library::readRecords(const host::RegisteredClass& record) {
  Members& members = members_[record.name];
  const auto callableOf = [this](const host::RegisteredMethod& method, bool ofInstance) {
    std::unique_ptr<Callable> callable = described(method.declaration, method.text);
    callable->plugin =
        std::make_unique<host::PreparedCall>(method.function, method.declaration, ofInstance);
    return callable;
  };
  for (const host::RegisteredMethod& method : record.methods) {
    if (method.function == nullptr) continue;
    std::unique_ptr<Callable> callable = callableOf(method, true);
    if (method.setter != nullptr && callable->declaration.result) {
      members.setters.push_back(setterOf(*callable));
      Callable& setter = *members.setters.back();
      setter.plugin = std::make_unique<host::PreparedCall>(method.setter, setter.declaration, true);
    }
    Callables& list = callable->assigns()        ? members.setters
                      : isConstructor(*callable) ? members.constructors
                                                 : members.methods;
    list.push_back(std::move(callable));
  }
  for (const host::RegisteredMethod& method : record.sharedMethods)
    if (method.function != nullptr) members.sharedMethods.push_back(callableOf(method, false));
}

void Library::addRow(Members& members, const NativeRow& row) {
  std::unique_ptr<Callable> callable =
      described(host::parseDeclaration(row.declaration), row.declaration);
  callable->native = row.function;
  if (row.setter != nullptr) {
    members.setters.push_back(setterOf(*callable));
    members.setters.back()->native = row.setter;
  }
  (isConstructor(*callable) ? members.constructors : members.methods)
      .push_back(std::move(callable));
}

void Library::addNative(const std::string& className, std::span<const NativeRow> rows,
                        bool shared) {
  Members& members = members_[className];
  for (const NativeRow& row : rows) addRow(members, row);
  if (shared) members.sharedMethods = std::move(members.methods);
}

void Library::addFunctions(std::span<const NativeRow> rows, bool extends) {
  Members members;
  for (const NativeRow& row : rows) addRow(members, row);
  for (std::unique_ptr<Callable>& function : members.methods) {
    function->extends = extends && !function->parameters.empty();
    functions_.push_back(std::move(function));
  }
}

void Library::add(std::unique_ptr<Callable> function) {
  // Before the language's own and earlier ones, which it hides.
  functions_.insert(functions_.begin(), std::move(function));
  ++unsettled_;
}

void Library::settle(bool keep) {
  if (!keep) functions_.erase(functions_.begin(), functions_.begin() + unsettled_);
  unsettled_ = 0;
}

Candidates Library::functions(std::string_view name) const { return named(functions_, name); }

Candidates Library::extensions(std::string_view name) const {
  Candidates found = functions(name);
  std::erase_if(found, [](const Callable* callable) { return !callable->extends; });
  return found;
}

Candidates Library::inherited(const std::string& className, List list,
                              std::string_view name) const {
  Candidates found;
  for (std::string c = className; !c.empty(); c = types_.superName(c)) {
    const auto members = members_.find(c);
    if (members == members_.end()) continue;
    const Candidates own = named(members->second.*list, name);
    found.insert(found.end(), own.begin(), own.end());
  }
  return found;
}

Candidates Library::methods(const std::string& className, std::string_view name) const {
  return inherited(className, &Members::methods, name);
}

Candidates Library::setters(const std::string& className, std::string_view name) const {
  return inherited(className, &Members::setters, name);
}

Candidates Library::sharedMethods(const std::string& className, std::string_view name) const {
  return inherited(className, &Members::sharedMethods, name);
}

Candidates Library::constructors(const std::string& className) const {
  return inherited(className, &Members::constructors, "Constructor");
}

Members& Library::arrayMembers(const Type& array) {
  Members& members = arrays_[nameOf(array)];
  if (!members.methods.empty()) return members;
  for (const NativeRow& row : ::runner::arrayMembers()) {
    const host::Declaration declaration =
        withElement(host::parseDeclaration(row.declaration), array.element());
    std::unique_ptr<Callable> callable = described(declaration, textOfDeclaration(declaration));
    callable->native = row.function;
    members.methods.push_back(std::move(callable));
  }
  return members;
}

Candidates Library::arrayMethods(const Type& array, std::string_view name) {
  return named(arrayMembers(array).methods, name);
}

std::vector<std::string> Library::functionNames() const {
  std::vector<std::string> names;
  addNames(functions_, names);
  return names;
}

std::vector<std::string> Library::memberNames(const Type& type) {
  std::vector<std::string> names;
  if (type.array) {
    addNames(arrayMembers(type).methods, names);
    return names;
  }
  for (const auto& function : functions_) {
    if (!function->extends || !types_.distance(type, function->parameters.front())) continue;
    // Those of any value are hardly looked for behind an object.
    if (type.kind == Kind::object && function->parameters.front().kind != Kind::object) continue;
    names.push_back(function->declaration.name);
  }
  std::string name = type.kind == Kind::variant ? "Variant" : type.className;
  for (; !name.empty(); name = types_.superName(name)) {
    const auto members = members_.find(name);
    if (members == members_.end()) continue;
    addNames(members->second.methods, names);
    addNames(members->second.setters, names);
  }
  return names;
}

std::vector<std::string> Library::sharedNames(const std::string& className) const {
  std::vector<std::string> names;
  const auto members = members_.find(className);
  if (members != members_.end()) addNames(members->second.sharedMethods, names);
  return names;
}

}  // namespace runner
