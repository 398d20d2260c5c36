#include "tests/host/sample_plugin.h"

#include <cstring>
#include <utility>

#include "plugin/handles.h"

namespace tests {
namespace {

using zel::HostBoolean;
using zel::HostFunction;
using zel::REALarray;
using zel::REALobject;
using zel::REALstring;

// The instance data is a number, and nobody else's.
std::int32_t& number(REALobject instance) {
  auto* const data =
      reinterpret_cast<char*>(instance) + SamplePlugin::current().record.base.systemUse;
  return *reinterpret_cast<std::int32_t*>(data);
}

extern "C" {

REALobject lockedObject(REALobject object) {
  if (object != nullptr) entryPoint<void(REALobject)>("REALLockObject")(object);
  return object;
}

void sampleCreated(REALobject /*instance*/) { ++SamplePlugin::current().constructed; }
void sampleDestroyed(REALobject /*instance*/) { ++SamplePlugin::current().destroyed; }

void sampleConstructor(REALobject instance) { number(instance) += 1; }
void sampleConstructorNumber(REALobject instance, std::int32_t value) { number(instance) += value; }
std::int32_t sampleNumber(REALobject instance) { return number(instance); }

std::int32_t sampleCount(REALobject instance, REALstring /*key*/) { return number(instance); }
void sampleSetCount(REALobject instance, REALstring key, std::int32_t value) {
  number(instance) = value;
  SamplePlugin::current().stored = value;
  SamplePlugin::current().storedKey =
      key == nullptr ? "" : entryPoint<const char*(REALstring)>("StringGetCString")(key);
}
std::int32_t sampleNegative(REALobject /*instance*/, std::int32_t value) { return -value; }
float sampleHalf(REALobject /*instance*/, float value) { return value / 2; }
double sampleThird(REALobject /*instance*/, double value) { return value / 3; }
HostBoolean sampleByte(REALobject /*instance*/, HostBoolean value) { return value; }
double sampleMixed(REALobject /*instance*/, float a, REALstring b, double c, HostBoolean d,
                   std::int32_t e) {
  return (b == nullptr ? 0 : 1000) + static_cast<double>(a) + c + d + e;
}
REALstring sampleEcho(REALobject /*instance*/, REALstring text) {
  if (text != nullptr) entryPoint<void(REALstring)>("REALLockString")(text);
  return text;
}
REALobject sampleSelf(REALobject instance) { return lockedObject(instance); }
REALobject sampleSameObject(REALobject /*instance*/, REALobject object) {
  return lockedObject(object);
}
HostBoolean sampleIsNull(REALobject /*instance*/, const void* handle) {
  return handle == nullptr ? 1 : 0;
}

void sampleRaise(REALobject /*instance*/, std::int32_t times) {
  for (std::int32_t i = 0; i < times; ++i) {
    const auto exception = entryPoint<REALobject(const char*)>("PluginNewInstance")(
        i == 0 ? "UnsupportedOperationException" : "OutOfMemoryException");
    entryPoint<void(REALobject)>("RuntimeRaiseException")(exception);
    entryPoint<void(REALobject)>("REALUnlockObject")(exception);
  }
}
void sampleThrow(REALobject /*instance*/, REALstring /*text*/) { throw std::string("thrown"); }

REALstring sampleVersion() {
  return entryPoint<REALstring(const char*, std::int32_t)>("REALBuildString")("1.0", 3);
}
REALobject sampleMake() {
  return entryPoint<REALobject(const char*)>("PluginNewInstance")("SampleZEL");
}

}  // extern "C"

template <class Function>
HostFunction plain(Function* function) {
  return reinterpret_cast<HostFunction>(function);
}

std::vector<zel::OlderMethodRecord> methods(const char* extraDeclaration) {
  std::vector<zel::OlderMethodRecord> list = {
      {plain(sampleConstructor), nullptr, "Constructor", 4},
      {plain(sampleConstructorNumber), nullptr, "Constructor(value as integer)", 4},
      {plain(sampleNumber), nullptr, "number as integer", 4},
      {plain(sampleCount), plain(sampleSetCount), "count(key as string) as integer", 4},
      {plain(sampleSetCount), nullptr, "setCountValue(key as string, value as integer)", 4},
      {plain(sampleSetCount), nullptr, "total(key as string, Assigns value as integer)", 4},
      {plain(sampleNegative), nullptr, "convert(value as integer) as integer", 4},
      {plain(sampleHalf), nullptr, "convert(value as single) as single", 4},
      {plain(sampleThird), nullptr, "convert(value as double) as double", 4},
      {plain(sampleByte), nullptr, "convert(value as boolean) as boolean", 4},
      {plain(sampleEcho), nullptr, "convert(text as string) as string", 4},
      {plain(sampleMixed), nullptr,
       "mixed(a as single, b as string, c as double, d as boolean, e as integer) as double", 4},
      {plain(sampleSelf), nullptr, "self as SampleZEL", 4},
      {plain(sampleSameObject), nullptr, "sameSample(object as SampleZEL) as SampleZEL", 4},
      {plain(sampleSameObject), nullptr, "sameStrings(values() as string) as string()", 4},
      {plain(sampleSameObject), nullptr, "sameVariants(values() as variant) as variant()", 4},
      {plain(sampleSameObject), nullptr, "sameVariant(value as variant) as variant", 4},
      {plain(sampleIsNull), nullptr, "isEmpty(text as string) as boolean", 4},
      {plain(sampleRaise), nullptr, "raise(times as integer)", 4},
      {plain(sampleThrow), nullptr, "throw(text as string)", 4},
  };
  if (extraDeclaration != nullptr)
    list.push_back({plain(sampleSelf), nullptr, extraDeclaration, 4});
  return list;
}

std::vector<zel::OlderMethodRecord> sharedMethods() {
  return {{plain(sampleVersion), nullptr, "version as string", 4},
          {plain(sampleMake), nullptr, "make as SampleZEL", 4}};
}

// The lists outlive their plugin, as a host may expect.
template <class Record>
Record* keep(std::vector<Record> records) {
  static std::vector<std::unique_ptr<std::vector<Record>>> kept;
  kept.push_back(std::make_unique<std::vector<Record>>(std::move(records)));
  return kept.back()->data();
}

void* inCurrentLayout(const std::vector<zel::OlderMethodRecord>& older) {
  std::vector<zel::REALmethodDefinition> current;
  current.reserve(older.size());
  for (const zel::OlderMethodRecord& record : older) {
    current.push_back(
        {record.function, record.setter, record.declaration, record.flags, 0, nullptr});
  }
  return keep(std::move(current));
}

void* inLayout(std::int32_t version, std::vector<zel::OlderMethodRecord> records) {
  return version <= 9 ? static_cast<void*>(keep(std::move(records))) : inCurrentLayout(records);
}

std::unique_ptr<SamplePlugin>& plugin() {
  static std::unique_ptr<SamplePlugin> instance;
  return instance;
}

}  // namespace

SamplePlugin& SamplePlugin::current() { return *plugin(); }

void SamplePlugin::main(zel::Resolver resolver) {
  SamplePlugin& self = current();
  const std::vector<zel::OlderMethodRecord> list = methods(self.extraDeclaration);
  zel::OlderClassRecord& record = self.record.base;
  record.version = self.recorded;
  record.name = self.className;
  record.superName = self.superName;
  record.dataSize = self.dataSize;
  record.constructor = plain(sampleCreated);
  record.destructor = plain(sampleDestroyed);
  record.flags = 4;
  record.methodCount = static_cast<std::int32_t>(list.size());
  record.methods = inLayout(self.recorded, list);
  record.sharedMethodCount = static_cast<std::int32_t>(sharedMethods().size());
  record.sharedMethods = inLayout(self.recorded, sharedMethods());
  reinterpret_cast<void (*)(std::int32_t)>(resolver("RegisterPluginVersion"))(self.announced);
  reinterpret_cast<void (*)(zel::REALclassDefinition*)>(resolver("PluginRegisterClass"))(
      &self.record);
}

HostTest::HostTest() {
  plugin() = std::make_unique<SamplePlugin>();
  start({});
}

void HostTest::TearDown() {
  if (host != nullptr) {
    EXPECT_EQ(host->unbalanced(), "");
  }
  EXPECT_EQ(takeFailures(), std::vector<std::string>{});
}

void HostTest::start(const host::HostOptions& options) {
  host = nullptr;
  host = std::make_unique<host::Host>(options);
  host->onFailure([this](const std::string& text) { failures_.push_back(text); });
}

std::vector<std::string> HostTest::takeFailures() { return std::exchange(failures_, {}); }

}  // namespace tests
