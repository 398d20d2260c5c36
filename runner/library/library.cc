#include "runner/library/library.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "runner/library/natives.h"
#include "runner/run/values.h"
#include "runner/text/targets.h"
#include "runner/text/text.h"

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
    {"System", ""},
    {"SpecialFolder", ""},
    {"Encodings", ""},
};

struct FunctionTable {
  std::span<const NativeRow> (*rows)();
  bool extends;  // whether they can be called on their first argument
};
constexpr FunctionTable kFunctionTables[] = {
    {textFunctions, true},  {numberFunctions, true}, {encodingFunctions, true},
    {hostFunctions, false}, {fileFunctions, false},  {colorFunctions, false},
};

struct MemberTable {
  const char* className;
  std::span<const NativeRow> (*rows)();
};
constexpr MemberTable kMemberTables[] = {
    {"RuntimeException", exceptionMembers},
    {"Dictionary", dictionaryMembers},
    {"Date", dateMembers},
    {"MemoryBlock", memoryBlockMembers},
    {"FolderItem", folderItemMembers},
    {"Variant", variantMembers},
    {"Color", colorMembers},
};
constexpr MemberTable kSharedTables[] = {
    {"System", systemMembers},
    {"SpecialFolder", specialFolderMembers},
    {"Encodings", encodingsMembers},
    {"DateTime", dateTimeShared},
};

constexpr char kConstructor[] = "constructor";

// Takes a word out of a declaration. The numbers of the parameters that it stood before.
std::vector<std::size_t> take(std::string_view word, std::string& declaration) {
  std::vector<std::size_t> found;
  for (std::size_t at = declaration.find(word); at != std::string::npos;
       at = declaration.find(word)) {
    const auto from = declaration.begin();
    const auto before = std::count(from, from + static_cast<std::ptrdiff_t>(at), ',');
    found.push_back(static_cast<std::size_t>(before));
    declaration.erase(at, word.size());
  }
  return found;
}

bool isConstructor(const Callable& callable) { return folded(callable.name) == kConstructor; }

void addNames(const Group& group, std::vector<std::string>& names) {
  for (const auto& callable : group.all()) names.push_back(callable->name);
}

// A declaration for arrays of a type: "T" stands for the type of their elements.
host::Declaration withElement(host::Declaration declaration, Type element) {
  const auto replace = [element](host::Type& type) {
    if (type.name == "T") type.name = element.name();
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

// The declaration of what an assignment to a method calls.
host::Declaration setterOf(host::Declaration declaration) {
  declaration.parameters.push_back({"value", *declaration.result, false, true});
  declaration.result = std::nullopt;
  return declaration;
}

}  // namespace

const Callable& Group::add(std::unique_ptr<Callable> callable) {
  all_.push_back(std::move(callable));
  const Callable& added = *all_.back();
  byKey_[folded(added.name)].push_back(&added);
  return added;
}

const Candidates& Group::named(const std::string& key) const {
  static const Candidates kNone;
  const auto found = byKey_.find(key);
  return found == byKey_.end() ? kNone : found->second;
}

Library::Library(Machine& machine) : machine_(machine) {
  addClasses();
  addConstants();
  addOwnClass("Pair", {kVariant, kVariant}, pairMembers());
  addOwnClass("DateTime", {kDouble}, dateTimeMembers());
  addOwnClass("TextEncoding", {kInteger}, textEncodingMembers());
  for (const FunctionTable& table : kFunctionTables) addFunctions(table.rows(), table.extends);
  for (const MemberTable& table : kMemberTables) addMembers(table.className, table.rows());
  for (const MemberTable& table : kSharedTables) addShared(table.className, table.rows());
  for (const std::string& name : machine.host().classNames())
    readRecords(*machine.host().findClass(name));
}

Library::~Library() {
  host::Host& host = machine_.host();
  for (const auto& own : keptClasses_)
    if (host.findClass(own->type->name) != nullptr) host.removeClass(own->type.name());
}

void Library::addConstants() {
  for (const PlatformConstant& constant : platformConstants(machine_.hostVersion())) {
    KnownVariable known;
    known.where = KnownVariable::Where::constant;
    const bool* const truth = std::get_if<bool>(&constant.value);
    known.type = truth != nullptr ? kBoolean : kDouble;
    known.value = truth != nullptr ? booleanValue(*truth) : std::get<double>(constant.value);
    language_.add(folded(constant.name), {std::string(constant.name), 0, std::move(known)});
  }
}

void Library::addClasses() {
  // An exception that is caught tells where it was raised.
  host::Host& host = machine_.host();
  if (host.findClass("System") == nullptr) host.addProperty("RuntimeException", "Stack as object");
  for (const FurtherClass& further : kFurtherClasses)
    machine_.types().addClass(further.name, further.superName);
  for (const std::string& name : machine_.types().names())
    language_.add(folded(name), {name, 0, *machine_.types().find(folded(name))});
}

std::unique_ptr<Callable> Library::described(const host::Declaration& declaration,
                                             std::string text) const {
  auto callable = std::make_unique<Callable>();
  callable->name = declaration.name;
  callable->text = std::move(text);
  // A class that nobody has registered has no objects but Nil.
  const auto typeOf = [this](const host::Type& type) {
    return machine_.types().find(type).value_or(kAnyObject);
  };
  for (const host::Parameter& parameter : declaration.parameters) {
    callable->parameters.push_back({typeOf(parameter.type), parameter.byRef, parameter.assigns});
  }
  if (declaration.result) callable->result = typeOf(*declaration.result);
  return callable;
}

void Library::readRecords(const host::RegisteredClass& record) {
  Members& members = membersOf(machine_.types().of(record));
  const auto callableOf = [this](const host::Declaration& declaration, const std::string& text,
                                 host::PluginFunction function, bool ofInstance) {
    std::unique_ptr<Callable> callable = described(declaration, text);
    callable->plugin = std::make_unique<host::PreparedCall>(function, declaration, ofInstance);
    return callable;
  };
  for (const host::RegisteredMethod& method : record.methods) {
    if (method.function == nullptr) continue;
    if (method.setter != nullptr && method.declaration.result) {
      members.setters.add(
          callableOf(setterOf(method.declaration), method.text, method.setter, true));
    }
    auto callable = callableOf(method.declaration, method.text, method.function, true);
    Group& group = callable->assigns()        ? members.setters
                   : isConstructor(*callable) ? members.constructors
                                              : members.methods;
    // What the runner has a function of its own for says more when it fails.
    const Candidates& own = group.named(folded(callable->name));
    const bool known = std::any_of(own.begin(), own.end(), [&callable](const Callable* one) {
      return one->native != nullptr && one->takesTheSame(*callable);
    });
    if (!known) group.add(std::move(callable));
  }
  for (const host::RegisteredMethod& method : record.sharedMethods) {
    if (method.function != nullptr)
      members.shared.add(callableOf(method.declaration, method.text, method.function, false));
  }
}

void Library::addRow(Members& members, const NativeRow& row) {
  // Those of plugins have none of these words.
  std::string text = row.declaration;
  const std::vector<std::size_t> gathering = take("ParamArray ", text);
  const std::vector<std::size_t> optional = take("Optional ", text);
  const host::Declaration declaration = host::parseDeclaration(text);
  if (row.setter != nullptr) {
    auto setter = described(setterOf(declaration), row.declaration);
    setter->native = row.setter;
    members.setters.add(std::move(setter));
  }
  auto callable = described(declaration, row.declaration);
  callable->native = row.function;
  for (const std::size_t i : gathering) {
    callable->parameters[i].type = callable->parameters[i].type.arrayOf();
    callable->parameters[i].paramArray = true;
  }
  for (const std::size_t i : optional)
    callable->parameters[i].initial = callable->parameters[i].type->initial();
  (isConstructor(*callable) ? members.constructors : members.methods).add(std::move(callable));
}

void Library::addMembers(const char* className, std::span<const NativeRow> rows) {
  const Type type = *machine_.types().find(folded(className));
  Members& members = membersOf(type);
  for (const NativeRow& row : rows) addRow(members, row);
  if (type != kVariant) return;
  for (const auto& member : members.methods.all()) member->onNil = true;
}

void Library::addShared(const char* className, std::span<const NativeRow> rows) {
  Members& members = membersOf(*machine_.types().find(folded(className)));
  for (const NativeRow& row : rows) {
    auto callable = described(host::parseDeclaration(row.declaration), row.declaration);
    callable->native = row.function;
    members.shared.add(std::move(callable));
  }
}

void Library::addOwnClass(const char* name, std::vector<Type> fields,
                          std::span<const NativeRow> rows) {
  auto added = std::make_unique<ProgramClass>();
  added->type = machine_.types().addClass(name, "");
  added->fields = std::move(fields);
  establish(machine_, *added);
  machine_.types().setSuper(added->type, std::nullopt, *added);
  language_.add(folded(name), {name, 0, added->type});
  for (const NativeRow& row : rows) addRow(membersOf(added->type), row);
  keep(std::move(added));
}

void Library::addFunctions(std::span<const NativeRow> rows, bool extends) {
  for (const NativeRow& row : rows) {
    auto function = described(host::parseDeclaration(row.declaration), row.declaration);
    function->native = row.function;
    function->extends = extends && !function->parameters.empty();
    const Callable& added = functions_.add(std::move(function));
    language_.addFunction(folded(added.name), added, 0);
  }
}

void Library::keep(Callables methods) {
  kept_.insert(kept_.end(), std::make_move_iterator(methods.begin()),
               std::make_move_iterator(methods.end()));
}

void Library::keep(std::unique_ptr<ProgramClass> added) {
  keptClasses_.push_back(std::move(added));
}

const Scope* Library::spaceOf(Type type) const {
  const auto found = spaces_.find(type.operator->());
  return found == spaces_.end() ? nullptr : found->second.get();
}

Scope& Library::addSpace(Type type, const Scope* outer) {
  auto& space = spaces_[type.operator->()];
  space = type.isObject() ? std::make_unique<Scope>(outer, *this, type)
                          : std::make_unique<Scope>(outer);
  return *space;
}

bool Library::hasMember(Type type, const std::string& key) {
  for (const TypeRow* row = type.operator->(); row != nullptr; row = row->superClass) {
    const Members& members = membersOf(Type(row));
    for (const Group* const group : {&members.methods, &members.setters, &members.shared})
      if (!group->named(key).empty()) return true;
  }
  return false;
}

Members& Library::membersOf(Type type) {
  const auto [found, isNew] = members_.try_emplace(type.operator->());
  if (isNew && type.isArray()) addArrayMembers(type, found->second);
  return found->second;
}

void Library::addArrayMembers(Type array, Members& members) const {
  for (const NativeRow& row : arrayMembers()) {
    const host::Declaration declaration =
        withElement(host::parseDeclaration(row.declaration), array.element());
    std::unique_ptr<Callable> callable = described(declaration, textOfDeclaration(declaration));
    callable->native = row.function;
    members.methods.add(std::move(callable));
  }
}

Candidates Library::inherited(Type type, Group Members::*group, const std::string& key) {
  Candidates found;
  for (const TypeRow* row = type.operator->(); row != nullptr; row = row->superClass) {
    const Candidates& own = (membersOf(Type(row)).*group).named(key);
    found.insert(found.end(), own.begin(), own.end());
  }
  return found;
}

Candidates Library::methods(Type type, const std::string& key) {
  Candidates found = inherited(type, &Members::methods, key);
  // An object can be constructed again, if its class lets it.
  if (found.empty() && type.isObject() && key == kConstructor) {
    found = constructors(type);
    std::erase_if(found, [](const Callable* c) { return !c->result.isNothing(); });
  }
  return found;
}

Candidates Library::setters(Type type, const std::string& key) {
  return inherited(type, &Members::setters, key);
}

Candidates Library::shared(Type type, const std::string& key) {
  return inherited(type, &Members::shared, key);
}

Candidates Library::constructors(Type type) {
  // Those of a program's class hide those of the classes above it.
  for (const TypeRow* row = type.operator->(); row != nullptr; row = row->superClass) {
    const Candidates& own = membersOf(Type(row)).constructors.named(kConstructor);
    if (row->own == nullptr) return inherited(Type(row), &Members::constructors, kConstructor);
    if (!own.empty()) return own;
  }
  return {};
}

std::vector<std::string> Library::memberNames(Type type) {
  std::vector<std::string> names;
  for (const auto& function : functions_.all()) {
    if (!function->extends || type.isArray()) continue;
    const Type receiver = function->parameters.front().type;
    // Those of any value are hardly looked for behind an object.
    if (type.isObject() && !receiver.isObject()) continue;
    if (distance(type, receiver)) names.push_back(function->name);
  }
  for (const TypeRow* row = type.operator->(); row != nullptr; row = row->superClass) {
    addNames(membersOf(Type(row)).methods, names);
    addNames(membersOf(Type(row)).setters, names);
  }
  return names;
}

std::vector<std::string> Library::sharedNames(Type type) {
  std::vector<std::string> names;
  addNames(membersOf(type).shared, names);
  return names;
}

std::vector<std::string> Library::namesIn(const Symbol& space) {
  if (const auto* const module = space.as<Module>()) return module->members->ownNames();
  const auto* const type = space.as<Type>();
  if (type == nullptr) return {};
  std::vector<std::string> names = sharedNames(*type);
  if (const Scope* const inside = spaceOf(*type)) {
    const std::vector<std::string> more = inside->ownNames();
    names.insert(names.end(), more.begin(), more.end());
  }
  return names;
}

}  // namespace runner
