#include "tests/defaults/fault_rows.h"

#include <utility>

namespace tests {

using namespace std::string_literals;
using zel::id;

Calls joined(const std::vector<Calls>& parts) {
  Calls all;
  for (const Calls& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

id text(Kit& kit, const std::string& utf8) {
  return foundation_double::Foundation::asObject(kit.foundation.string(utf8));
}

// --- the state that a call meets

void store(Kit& kit, id value) {
  zel::send<void, "setObject:forKey:">(kit.foundation.standardDefaults(), value,
                                       kit.foundation.string("key"));
}

std::function<void(Kit&)> storing(Make value) {
  return [value = std::move(value)](Kit& kit) { store(kit, value(kit)); };
}

std::function<void(Kit&)> replying(const char* selector, Make value) {
  return [selector, value = std::move(value)](Kit& kit) {
    replied = value(kit);
    kit.foundation.addMethod("NSUserDefaults", selector,
                             [](id, zel::SEL, zel::CFStringRef) { return replied; });
  };
}

// --- rows

std::function<Arguments(Kit&)> fixed(Arguments arguments) {
  return [arguments = std::move(arguments)](Kit&) { return arguments; };
}

FaultCall getter(const char* name, const char* method, std::function<void(Kit&)> before,
                 const std::string& gives, const Lines& failed) {
  FaultCall call{name, method, fixed({"key"s}), gives, failed};
  call.before = std::move(before);
  return call;
}

FaultCall setter(const char* name, const char* method, std::function<Value(Kit&)> value,
                 const char* readBy, const std::string& without, const std::string& with) {
  FaultCall call{name, method, [value = std::move(value)](Kit& kit) {
                   return Arguments{"key"s, value(kit)};
                 }};
  call.trace = {readBy, {"key"s}, without, with};
  return call;
}

FaultCall withBlocks(FaultCall call, std::size_t blocks) {
  call.blocks = blocks;
  return call;
}

id mixedDictionary(Kit& kit) {
  return kit.foundation.dictionary({{"a"s, kit.foundation.number("q", 1)},
                                    {"b"s, text(kit, "two")},
                                    {"c"s, kit.foundation.data("ab")},
                                    {"d"s, kit.foundation.dictionary({{"x"s, text(kit, "y")}})}});
}

Value hostDictionary(Kit& kit) {
  return kit.host.dictionary({{"a"s, std::int32_t{1}},
                              {"b"s, kit.host.memoryBlock("ab")},
                              {"c"s, kit.host.dictionary({{"x"s, 0.5}})}});
}

}  // namespace tests
