#include "foundation_double/arrays.h"

#include "foundation_double/classes.h"
#include "foundation_double/exceptions.h"
#include "foundation_double/literals.h"

namespace foundation_double::objc {
namespace {

ArrayBody& arrayBody(const void* array) { return bodyOf<ArrayBody>(array, "array"); }

std::unique_ptr<Body> makeArrayBody() { return std::make_unique<ArrayBody>(); }

zel::id array(zel::id self, zel::SEL /*selector*/) {
  return pooled(createInstance(classRecord(self)));
}

zel::id arrayWithCapacity(zel::id self, zel::SEL selector, zel::NSUInteger capacity) {
  const zel::id made = array(self, selector);
  arrayBody(made).capacity = capacity;
  return made;
}

zel::NSUInteger count(zel::id self, zel::SEL /*selector*/) {
  return arrayBody(self).elements.size();
}

zel::id objectAtIndex(zel::id self, zel::SEL selector, zel::NSUInteger index) {
  const auto& elements = arrayBody(self).elements;
  if (index >= elements.size()) {
    raise("NSRangeException", messageText(*instance(self), selector) + ": no element " +
                                  std::to_string(index) + " of " + std::to_string(elements.size()));
  }
  return elements[index].get();
}

void addObject(zel::id self, zel::SEL selector, zel::id element) {
  if (element == nullptr) {
    raise("NSInvalidArgumentException",
          messageText(*instance(self), selector) + ": attempt to insert nil");
  }
  arrayBody(self).elements.emplace_back(element);
}

// --- NSEnumerator

struct EnumeratorBody : Body {
  Held array;
  std::size_t next = 0;
};

zel::id objectEnumerator(zel::id self, zel::SEL /*selector*/) {
  auto body = std::make_unique<EnumeratorBody>();
  body->array = Held(self);
  return pooled(createObject("NSEnumerator", std::move(body)));
}

zel::id nextObject(zel::id self, zel::SEL /*selector*/) {
  auto& body = bodyOf<EnumeratorBody>(self, "enumerator");
  const auto& elements = arrayBody(body.array.get()).elements;
  return body.next == elements.size() ? nullptr : elements[body.next++].get();
}

}  // namespace

std::optional<std::string> ArrayBody::literal() const {
  std::string text = "(";
  for (const Held& element : elements) {
    if (text.size() > 1) text += ", ";
    text += literalOf(element.get());
  }
  return text + ")";
}

ClassDefinition arrayClass() {
  return {.name = "NSArray",
          .makeBody = &makeArrayBody,
          .storable = true,
          .methods = {method("count", &count), method("objectAtIndex:", &objectAtIndex),
                      method("objectEnumerator", &objectEnumerator)},
          .classMethods = {method("array", &array)}};
}

ClassDefinition mutableArrayClass() {
  return {.name = "NSMutableArray",
          .superName = "NSArray",
          .storable = true,
          .methods = {method("addObject:", &addObject)},
          .classMethods = {method("arrayWithCapacity:", &arrayWithCapacity)}};
}

ClassDefinition enumeratorClass() {
  return {.name = "NSEnumerator", .methods = {method("nextObject", &nextObject)}};
}

zel::id createArray(std::vector<Held> elements) {
  auto body = std::make_unique<ArrayBody>();
  body->elements = std::move(elements);
  return createObject("NSArray", std::move(body));
}

}  // namespace foundation_double::objc
