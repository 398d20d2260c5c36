// What the tables of calls are written with.
#pragma once

#include "tests/defaults/fault_calls.h"

namespace tests {

using Arguments = std::vector<Value>;
using Calls = std::vector<FaultCall>;
using Make = std::function<zel::id(Kit&)>;

Calls joined(const std::vector<Calls>& parts);
/// Calls for values that are objects.
Calls objectCalls();

/// A text that is long enough for a buffer on the way back to the host, and how it is described.
inline const std::string kLongText(150, 'x');  // NOLINT(cert-err58-cpp): for the tests
inline const std::string kLongLine = '"' + kLongText + '"';  // NOLINT(cert-err58-cpp): the same

zel::id text(Kit& kit, const std::string& utf8);
/// A native dictionary with entries of several kinds, one of them data, and what becomes of it.
zel::id mixedDictionary(Kit& kit);
inline constexpr const char* kMixedDictionary =
    R"({"a": Int64 1, "b": "two", "c": MemoryBlock 6162, "d": {"x": "y"}})";
/// A host dictionary with entries of several kinds, and what is read back once it is stored.
Value hostDictionary(Kit& kit);
inline constexpr const char* kStoredDictionary =
    R"({"a": Int32 1, "b": MemoryBlock 6162, "c": {"x": Double 0.5}})";

/// The value stands in the store.
std::function<void(Kit&)> storing(Make value);
/// The value is the reply to the message, for objects that no store keeps.
std::function<void(Kit&)> replying(const char* selector, Make value);
/// That reply.
inline zel::id replied = nullptr;

std::function<Arguments(Kit&)> fixed(Arguments arguments);
FaultCall getter(const char* name, const char* method, std::function<void(Kit&)> before,
                 const std::string& gives, const Lines& failed = {"nil"});
FaultCall setter(const char* name, const char* method, std::function<Value(Kit&)> value,
                 const char* readBy, const std::string& without, const std::string& with);
/// The same call, which makes that many of the host's blocks.
FaultCall withBlocks(FaultCall call, std::size_t blocks);

}  // namespace tests
