// Classes, modules and enums.
#include <algorithm>
#include <utility>

#include "runner/syntax/program_parser.h"
#include "runner/text/diagnostic.h"

namespace runner {
namespace {

using Kind = Token::Kind;

struct AccessWord {
  std::string_view word;
  Access access;
};
constexpr AccessWord kAccesses[] = {{"public", Access::everybody},
                                    {"global", Access::everybody},
                                    {"protected", Access::family},
                                    {"private", Access::owner}};

const AccessWord* accessAt(const Token& token) {
  const auto* const found = std::find_if(std::begin(kAccesses), std::end(kAccesses),
                                         [&](const AccessWord& row) { return token.is(row.word); });
  return found == std::end(kAccesses) ? nullptr : found;
}

bool beginsSpace(const Token& token) {
  return token.is("class") || token.is("module") || token.is("enum");
}

}  // namespace

bool ProgramParser::atSpace() {
  const bool qualified = accessAt(reader_.current()) != nullptr && beginsSpace(reader_.ahead());
  return qualified || (beginsSpace(reader_.current()) && reader_.ahead().kind == Kind::word);
}

void ProgramParser::spaceOfProgram(Program& program) {
  if (accessAt(reader_.current()) != nullptr) reader_.advance();
  if (reader_.current().is("enum")) {
    program.enumerations.push_back(enumeration());
  } else {
    program.spaces.push_back(space());
  }
}

std::unique_ptr<Space> ProgramParser::space() {
  const Nesting nesting(depth_, reader_.current().place);
  const Place begin = reader_.current().place;
  auto space = std::make_unique<Space>();
  space->isModule = reader_.current().is("module");
  const std::string_view what = space->isModule ? "Module" : "Class";
  reader_.advance();
  space->name = reader_.name("the name of a class or module");
  if (!space->isModule && reader_.accept("inherits")) space->super = reader_.type();
  endOfLine();
  Accessors accessors;
  while (!reader_.atEnd() && !reader_.current().is("end")) member(*space, accessors);
  closeEnd(begin, what);
  endOfLine();
  return space;
}

ProgramParser::Modifiers ProgramParser::modifiers() {
  Modifiers modifiers;
  for (;; reader_.advance()) {
    // A member can have such a name, too.
    if (reader_.ahead().is("as") || reader_.ahead().is("(")) return modifiers;
    if (const AccessWord* const found = accessAt(reader_.current())) {
      modifiers.access = found->access;
      modifiers.global = modifiers.global || found->word == "global";
    } else if (reader_.current().is("shared")) {
      modifiers.shared = true;
    } else {
      return modifiers;
    }
  }
}

void ProgramParser::member(Space& space, Accessors& accessors) {
  if (reader_.atEndOfLine()) {
    reader_.advance();
    return;
  }
  if (!space.isModule && reader_.accept("inherits")) {
    space.super = reader_.type();
    endOfLine();
    return;
  }
  reader_.refuseOutside();
  const Modifiers modifiers = this->modifiers();
  reader_.refuseOutside();
  const Token& first = reader_.current();
  if (first.is("sub") || first.is("function")) {
    space.methods.push_back(method());
    Method& added = *space.methods.back();
    added.access = modifiers.access;
    added.shared = modifiers.shared || space.isModule;
    added.global = modifiers.global;
  } else if (first.is("const")) {
    space.constants.push_back({modifiers.access, modifiers.global, constantDeclaration()});
    endOfLine();
  } else if (first.is("enum") && reader_.ahead().kind == Kind::word && !reader_.ahead().is("as")) {
    space.enumerations.push_back(enumeration());
    space.enumerations.back().global = modifiers.global;
  } else if (first.is("class") || first.is("module")) {
    space.spaces.push_back(this->space());
  } else if ((first.is("get") || first.is("set")) && !reader_.ahead().is("as")) {
    accessor(accessors);
  } else {
    property(space, modifiers, accessors);
  }
}

void ProgramParser::property(Space& space, const Modifiers& modifiers, Accessors& accessors) {
  const Place begin = reader_.current().place;
  const bool named = reader_.current().is("property") && !reader_.ahead().is("as");
  if (named || reader_.current().is("dim") || reader_.current().is("var")) reader_.advance();
  Property property;
  property.access = modifiers.access;
  property.shared = modifiers.shared || space.isModule;
  property.global = modifiers.global;
  property.declared = declaration();
  property.text = source_.text(span(begin, reader_.lastPlace()));
  endOfLine();
  while (named && reader_.atEndOfLine() && !reader_.atEnd()) reader_.advance();
  const bool computed = named && (reader_.current().is("get") || reader_.current().is("set"));
  while (computed && !reader_.atEnd() && !reader_.current().is("end")) {
    if (reader_.atEndOfLine()) {
      reader_.advance();
    } else {
      accessor(accessors);
    }
  }
  if (computed) {
    closeEnd(begin, "Property");
    endOfLine();
  }
  if (accessors.getter != nullptr || accessors.setter != nullptr) complete(property, accessors);
  space.properties.push_back(std::move(property));
}

// A Get or Set, as a method.
void ProgramParser::accessor(Accessors& accessors) {
  const Token word = reader_.current();
  const bool gets = word.is("get");
  auto method = std::make_unique<Method>();
  reader_.advance();
  if (!gets && reader_.accept("(")) {
    method->parameters.push_back(parameter());
    reader_.expect(")", "\")\"");
  }
  endOfLine();
  method->name = word.word();
  method->body = block();
  closeEnd(word.place, gets ? "Get" : "Set");
  endOfLine();
  (gets ? accessors.getter : accessors.setter) = std::move(method);
}

// Makes methods of a property's Get and Set, and leaves none of them to the next one.
void ProgramParser::complete(Property& property, Accessors& accessors) {
  const Variable& variable = property.declared.variables.front();
  if (!property.declared.type)
    refuse(variable.name.place, "A property with a Get or Set needs a type.");
  TypeName type = *property.declared.type;
  type.array = type.array || variable.array;
  if (accessors.getter != nullptr) accessors.getter->result = type;
  if (accessors.setter != nullptr && accessors.setter->parameters.empty()) {
    FormalParameter value;
    value.name = {"value", "value", variable.name.place};
    value.type = type;
    accessors.setter->parameters.push_back(std::move(value));
  }
  if (accessors.setter != nullptr) accessors.setter->parameters.back().assigns = true;
  for (Method* const method : {accessors.getter.get(), accessors.setter.get()}) {
    if (method == nullptr) continue;
    method->name = variable.name;
    method->text = property.text;
    method->access = property.access;
    method->shared = property.shared;
    method->global = property.global;
  }
  property.getter = std::move(accessors.getter);
  property.setter = std::move(accessors.setter);
}

Enumeration ProgramParser::enumeration() {
  const Place begin = reader_.current().place;
  reader_.advance();
  Enumeration enumeration;
  enumeration.name = reader_.name("the name of an enum");
  if (reader_.accept("as")) reader_.type();
  endOfLine();
  while (!reader_.atEnd() && !reader_.current().is("end")) {
    if (reader_.atEndOfLine()) {
      reader_.advance();
      continue;
    }
    Enumeration::Member member;
    member.name = reader_.anyWord("the name of a value");
    if (reader_.accept("=")) member.value = expressions_.expression();
    enumeration.members.push_back(std::move(member));
    reader_.accept(",");
    endOfLine();
  }
  closeEnd(begin, "Enum");
  endOfLine();
  return enumeration;
}

}  // namespace runner
