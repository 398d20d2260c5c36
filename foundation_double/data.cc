#include "foundation_double/data.h"

#include "foundation_double/classes.h"

namespace foundation_double::objc {
namespace {

DataBody& dataBody(const void* data) { return bodyOf<DataBody>(data, "data"); }

zel::id dataWithBytes(zel::id /*self*/, zel::SEL /*selector*/, const void* bytes,
                      zel::NSUInteger length) {
  if (bytes == nullptr && length > 0) misuseWithoutAnswer("data of bytes that are nowhere");
  auto body = std::make_unique<DataBody>();
  if (length > 0) body->bytes.assign(static_cast<const char*>(bytes), length);
  return pooled(createData(std::move(body)));
}

const void* bytes(zel::id self, zel::SEL /*selector*/) {
  const DataBody& body = dataBody(self);
  return body.isWithoutBytes ? nullptr : body.bytes.data();
}

zel::NSUInteger length(zel::id self, zel::SEL /*selector*/) {
  const DataBody& body = dataBody(self);
  return body.pretendedLength.value_or(body.bytes.size());
}

}  // namespace

std::optional<std::string> DataBody::literal() const {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "<";
  for (const char byte : bytes) {
    const auto bits = static_cast<unsigned char>(byte);
    text += kDigits[bits >> 4];
    text += kDigits[bits & 0xF];
  }
  return text + ">";
}

ClassDefinition dataClass() {
  return {.name = "NSData",
          .storable = true,
          .methods = {method("bytes", &bytes), method("length", &length)},
          .classMethods = {method("dataWithBytes:length:", &dataWithBytes)}};
}

zel::id createData(std::unique_ptr<DataBody> body) {
  return createObject("NSData", std::move(body));
}

}  // namespace foundation_double::objc
