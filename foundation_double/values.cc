#include "foundation_double/values.h"

#include <cstring>
#include <initializer_list>

#include "foundation_double/classes.h"
#include "foundation_double/numbers.h"

namespace foundation_double::objc {
namespace {

template <class Structure>
constexpr const char* kEncoding = nullptr;
template <>
constexpr const char* kEncoding<zel::NSPoint> = zel::kPointEncoding;
template <>
constexpr const char* kEncoding<zel::NSSize> = zel::kSizeEncoding;
template <>
constexpr const char* kEncoding<zel::NSRect> = zel::kRectEncoding;
template <>
constexpr const char* kEncoding<zel::NSRange> = zel::kRangeEncoding;

ValueBody& valueBody(const void* value) { return bodyOf<ValueBody>(value, "value"); }

template <class Structure>
zel::id createStructure(Structure structure) {
  auto body = std::make_unique<ValueBody>();
  body->type = kEncoding<Structure>;
  body->isFilled = true;
  std::memcpy(body->bytes.data(), &structure, sizeof structure);
  return createObject("NSValue", std::move(body));
}

template <class Structure>
Structure read(const ValueBody& body) {
  if (!body.isFilled || body.type != kEncoding<Structure>) {
    misuseWithoutAnswer(std::string(kEncoding<Structure>) + " read from a value of type " +
                        body.type);
  }
  Structure structure;
  std::memcpy(&structure, body.bytes.data(), sizeof structure);
  return structure;
}

// --- literals

std::string call(const char* name, std::initializer_list<std::string> arguments) {
  std::string text;
  for (const std::string& argument : arguments) text += (text.empty() ? "" : ", ") + argument;
  return std::string(name) + "(" + text + ")";
}

std::string textOfPoint(const ValueBody& body) {
  const auto point = read<zel::NSPoint>(body);
  return call("point", {textOf(point.x), textOf(point.y)});
}

std::string textOfSize(const ValueBody& body) {
  const auto size = read<zel::NSSize>(body);
  return call("size", {textOf(size.width), textOf(size.height)});
}

std::string textOfRect(const ValueBody& body) {
  const auto [origin, size] = read<zel::NSRect>(body);
  return call("rect",
              {textOf(origin.x), textOf(origin.y), textOf(size.width), textOf(size.height)});
}

std::string textOfRange(const ValueBody& body) {
  const auto range = read<zel::NSRange>(body);
  return call("range", {std::to_string(range.location), std::to_string(range.length)});
}

struct Structure {
  const char* encoding;
  std::string (*text)(const ValueBody&);
};
constexpr Structure kStructures[] = {{zel::kPointEncoding, textOfPoint},
                                     {zel::kSizeEncoding, textOfSize},
                                     {zel::kRectEncoding, textOfRect},
                                     {zel::kRangeEncoding, textOfRange}};

// --- methods

template <class Structure>
zel::id valueWith(zel::id /*self*/, zel::SEL /*selector*/, Structure structure) {
  return pooled(createStructure(structure));
}

template <class Structure>
Structure value(zel::id self, zel::SEL /*selector*/) {
  return read<Structure>(valueBody(self));
}

const char* objCType(zel::id self, zel::SEL /*selector*/) { return valueBody(self).type.c_str(); }

// --- NSNull

struct NullBody : Body {
  [[nodiscard]] std::optional<std::u16string> text() const override { return u"<null>"; }
  [[nodiscard]] std::optional<std::string> literal() const override { return "null"; }
};

zel::id null(zel::id /*self*/, zel::SEL /*selector*/) { return sharedNull(); }

}  // namespace

std::optional<std::string> ValueBody::literal() const {
  if (!isFilled) return call("value", {type});
  for (const Structure& structure : kStructures) {
    if (structure.encoding == type) return structure.text(*this);
  }
  return std::nullopt;
}

ClassDefinition valueClass() {
  return {.name = "NSValue",
          .methods = {method("objCType", &objCType), method("pointValue", &value<zel::NSPoint>),
                      method("sizeValue", &value<zel::NSSize>),
                      method("rectValue", &value<zel::NSRect>),
                      method("rangeValue", &value<zel::NSRange>)},
          .classMethods = {method("valueWithPoint:", &valueWith<zel::NSPoint>),
                           method("valueWithSize:", &valueWith<zel::NSSize>),
                           method("valueWithRect:", &valueWith<zel::NSRect>),
                           method("valueWithRange:", &valueWith<zel::NSRange>)}};
}

ClassDefinition nullClass() { return {.name = "NSNull", .classMethods = {method("null", &null)}}; }

zel::id createValue(zel::NSPoint point) { return createStructure(point); }
zel::id createValue(zel::NSSize size) { return createStructure(size); }
zel::id createValue(zel::NSRect rect) { return createStructure(rect); }
zel::id createValue(zel::NSRange range) { return createStructure(range); }

zel::id createValue(const std::string& type) {
  auto body = std::make_unique<ValueBody>();
  body->type = type;
  return createObject("NSValue", std::move(body));
}

zel::id sharedNull() {
  static Instance* const null = Accounts::shared().createImmortal(
      Runtime::shared().require("NSNull"), std::make_unique<NullBody>());
  return handle(null);
}

}  // namespace foundation_double::objc
