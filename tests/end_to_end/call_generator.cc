#include "tests/end_to_end/call_generator.h"

namespace tests {
namespace {

using host::Host;
using host::ObjectRef;
using host::Parameter;
using host::sameName;
using host::Text;
using host::Type;
using host::Value;
using namespace std::string_literals;

constexpr int kDepth = 3;

// Few enough that what one call has stored is read and overwritten by others.
const Value kKeys[] = {"one"s, "two"s, "drei \xC3\xA4"s, Text("drei \x8A", 0), ""s};
// Some of them aren't UTF-8, and one is empty.
const Value kTexts[] = {"one"s,
                        "two"s,
                        "drei äöü"s,
                        "mailto:somebody@example.com"s,
                        "17"s,
                        "YES"s,
                        "com.example.generated"s,
                        "NSGlobalDomain"s,
                        Text("caf\x8E", 0),
                        Text("caf\xE9", 0x201),
                        Text("plain"),
                        std::string(150, 'x'),
                        ""s};

}  // namespace

CallGenerator::CallGenerator(Host& host, const std::string& className, unsigned seed)
    : host_(host), random_(seed) {
  const host::RegisteredClass& registered = *host.findClass(className);
  addCandidates(registered.methods, false);
  addCandidates(registered.sharedMethods, true);
}

void CallGenerator::addCandidates(const std::vector<host::RegisteredMethod>& methods, bool shared) {
  using Kind = GeneratedCall::Kind;
  for (const host::RegisteredMethod& method : methods) {
    Candidate candidate{shared ? Kind::kShared : Kind::kMethod, &method.declaration,
                        method.declaration.parameters};
    candidates_.push_back(candidate);
    if (method.setter == nullptr) continue;
    candidate.kind = Kind::kAssignment;
    candidate.parameters.push_back({"value", method.declaration.result.value()});
    candidates_.push_back(candidate);
  }
}

std::size_t CallGenerator::below(std::size_t limit) {
  return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
}

GeneratedCall CallGenerator::next() {
  const Candidate& candidate = candidates_[below(candidates_.size())];
  GeneratedCall call{candidate.kind, candidate.declaration->name, {}};
  for (const Parameter& parameter : candidate.parameters)
    call.arguments.push_back(argument(parameter));
  return call;
}

Value CallGenerator::argument(const Parameter& parameter) {
  const Type& type = parameter.type;
  if (sameName(parameter.name, "key")) return kKeys[below(std::size(kKeys))];
  if (type.array && below(10) == 0) return ObjectRef();
  if (type.array && sameName(type.name, "string")) {
    return host_.array(Host::kStringElements, {text(), text(), "last"s});
  }
  if (type.array) return array(kDepth);
  if (sameName(type.name, "string")) return text();
  if (sameName(type.name, "integer")) return static_cast<std::int32_t>(random_());
  if (sameName(type.name, "single")) return static_cast<float>(below(1000)) / 8;
  if (sameName(type.name, "double")) return static_cast<double>(random_()) / 256;
  if (sameName(type.name, "boolean")) return static_cast<std::int8_t>(below(2));
  if (below(12) == 0) return ObjectRef();
  if (sameName(type.name, "memoryblock")) return host_.memoryBlock(bytes());
  if (sameName(type.name, "folderitem")) return file();
  if (sameName(type.name, "dictionary")) return dictionary(kDepth);
  return variant(kDepth);
}

Value CallGenerator::text() { return kTexts[below(std::size(kTexts))]; }

Value CallGenerator::variant(int depth) {
  const std::size_t kind = below(depth > 0 ? 12 : 9);
  if (kind >= 11) return array(depth - 1);
  if (kind >= 9) return dictionary(depth - 1);
  if (kind == 8) return typedArray();
  if (kind == 7) return file();
  if (kind == 6) return host_.memoryBlock(bytes());
  if (kind == 5) return date();
  return simpleVariant();
}

ObjectRef CallGenerator::simpleVariant() {
  switch (below(9)) {
    case 0:
      return host_.variant(static_cast<std::int32_t>(random_()));
    case 1:
      return host_.variant(static_cast<std::int64_t>(random_()) * 5000);
    case 2:
      return host_.variant(static_cast<std::uint32_t>(random_()));
    case 3:
      return host_.variant(std::uint64_t{random_()} << 31);
    case 4:
      return host_.variant(static_cast<float>(below(1000)) / 16);
    case 5:
      return host_.variant(static_cast<double>(random_()) / 1024);
    case 6:
      return host_.variant(static_cast<std::int8_t>(below(2)));
    case 7:
      return {};
    default:
      return host_.variant(text());
  }
}

// One entry at most, because the order of several isn't kept.
ObjectRef CallGenerator::dictionary(int depth) {
  if (below(6) == 0) return host_.dictionary();
  return host_.dictionary({{text(), variant(depth)}});
}

ObjectRef CallGenerator::array(int depth) {
  std::vector<Value> elements;
  for (std::size_t count = below(4); count > 0; --count) elements.push_back(variant(depth));
  return host_.array(Host::kObjectElements, elements);
}

ObjectRef CallGenerator::typedArray() {
  switch (below(5)) {
    case 0:
      return host_.array(4098, {std::int32_t{1}, static_cast<std::int32_t>(random_())});
    case 1:
      return host_.array(4099, {static_cast<std::int64_t>(random_()) << 8});
    case 2:
      return host_.array(4101, {0.25, 1e9});
    case 3:
      return host_.array(4104, {text(), "b"s});
    default:
      return host_.array(4107, {std::int8_t{1}, std::int8_t{0}});
  }
}

ObjectRef CallGenerator::date() {
  const auto part = [this](int first, std::size_t count) {
    return first + static_cast<std::int32_t>(below(count));
  };
  return host_.date(
      {part(1950, 80), part(1, 12), part(1, 28), part(0, 24), part(0, 60), part(0, 60)});
}

ObjectRef CallGenerator::file() {
  const char* const paths[] = {"/", "/tmp", "/etc/passwd", "/tmp/not there", "/nowhere/at all"};
  return host_.folderItem(paths[below(std::size(paths))]);
}

std::string CallGenerator::bytes() {
  std::string made(below(20), '\0');
  for (char& byte : made) byte = static_cast<char>(below(256));
  return made;
}

}  // namespace tests
