// The records by which the host is told about a class, in the layout that current hosts read and in
// the older one of hosts before 2012.0. Every older record is the beginning of the current one.
//
// A word is a pointer or a 32-bit integer, as its role says, in natural C layout. The words whose
// role this plugin doesn't need are kept as words and copied as they stand.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel {

/// A function that the host calls; its true type follows from the declaration beside it.
using HostFunction = void (*)();
using Word = std::intptr_t;

/// Version 12 of the plugin interface, which the current records are written for.
inline constexpr std::int32_t kCurrentControlVersion = 12;

struct OlderMethodRecord {
  HostFunction function;
  HostFunction setter;      // called when the host assigns to the getter's declaration; nullable
  const char* declaration;  // in the host's language
  std::int32_t flags;
};
struct REALmethodDefinition {
  HostFunction function;
  HostFunction setter;
  const char* declaration;
  std::int32_t flags;
  std::int32_t attributeCount;
  const void* attributes;
};

struct OlderEventRecord {
  const char* declaration;
  void* systemUse;
};
struct REALevent {
  const char* declaration;
  void* systemUse;  // after a downgrade: the record's older twin
  std::int32_t attributeCount;
  const void* attributes;
};

struct OlderConstantRecord {
  Word words[3];
};
struct REALconstant {
  Word words[3];
  std::int32_t attributeCount;
  const void* attributes;
};

struct OlderPropertyRecord {
  Word words[10];
};
struct REALproperty {
  Word words[10];
  std::int32_t attributeCount;
  const void* attributes;
};

/// What both class records begin with. The lists are of current or of older records, as the record
/// itself is; a list may be null while its count is not.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the order is the host's.
struct OlderClassRecord {
  std::int32_t version;      // of the plugin interface
  const char* name;          // of the class
  const char* superName;     // null: none
  std::int32_t dataSize;     // instance data, in bytes
  std::int32_t systemUse;    // the host writes the offset of the instance data here
  HostFunction constructor;  // called for every new object
  HostFunction destructor;   // called when an object dies
  void* properties = nullptr;
  std::int32_t propertyCount = 0;
  const void* methods = nullptr;
  std::int32_t methodCount = 0;
  void* events = nullptr;
  std::int32_t eventCount = 0;
  void* eventInstances = nullptr;
  std::int32_t eventInstanceCount = 0;
  const char* interfaces = nullptr;
  void* attributes = nullptr;
  std::int32_t attributeCount = 0;
  void* constants = nullptr;
  std::int32_t constantCount = 0;
  std::int32_t flags = 0;
  void* sharedProperties = nullptr;
  std::int32_t sharedPropertyCount = 0;
  const void* sharedMethods = nullptr;
  std::int32_t sharedMethodCount = 0;
};
struct REALclassDefinition {
  OlderClassRecord base;  // the words that every host knows
  void* delegates = nullptr;
  std::int32_t delegateCount = 0;
  void* enums = nullptr;
  std::int32_t enumCount = 0;
};

static_assert(sizeof(void*) != 4 || sizeof(OlderMethodRecord) == 16);
static_assert(sizeof(void*) != 4 || sizeof(REALmethodDefinition) == 24);
static_assert(sizeof(void*) != 4 || sizeof(OlderEventRecord) == 8);
static_assert(sizeof(void*) != 4 || sizeof(REALevent) == 16);
static_assert(sizeof(void*) != 4 || sizeof(OlderConstantRecord) == 12);
static_assert(sizeof(void*) != 4 || sizeof(REALconstant) == 20);
static_assert(sizeof(void*) != 4 || sizeof(OlderPropertyRecord) == 40);
static_assert(sizeof(void*) != 4 || sizeof(REALproperty) == 48);
static_assert(sizeof(void*) != 4 || sizeof(OlderClassRecord) == 100);
static_assert(sizeof(void*) != 4 || sizeof(REALclassDefinition) == 116);

}  // namespace zel
