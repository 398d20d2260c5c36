// Every wrapper of the host's services, from the list that the wrappers come from.
#include "plugin/host.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/fresh_plugin.h"

namespace zel {
namespace {

using Names = std::vector<std::string>;

// --- a host that knows just what a test tells it

struct Directory {
  void* find(const char* name) {
    asked.emplace_back(name);
    const auto found = known.find(name);
    return found == known.end() ? nullptr : found->second;
  }
  template <class Function>
  void add(const char* name, Function* function) {
    known[name] = reinterpret_cast<void*>(function);
  }
  std::map<std::string, void*> known;
  Names asked;
};

Directory entryPoints;
Directory frameworkMethods;
std::vector<REALobject> firstArgumentsOfLoad;

void* resolve(const char* name) { return entryPoints.find(name); }

void* loadGlobalMethod(REALobject first, const char* declaration) {
  firstArgumentsOfLoad.push_back(first);
  return frameworkMethods.find(declaration);
}

// --- sample values, all distinct; a pointer points at storage that shows whether it was written to

constexpr unsigned char kUntouched = 0xA5;
std::array<unsigned char, 4096> storage;

bool storageUntouched() {
  return std::ranges::all_of(storage, [](unsigned char byte) { return byte == kUntouched; });
}

template <class T>
T sampleValue(std::size_t position) {
  if constexpr (std::is_pointer_v<T>) {
    return reinterpret_cast<T>(storage.data() + 64 * (position + 1));
  } else {
    return static_cast<T>(0x41 + position);
  }
}

template <class... T, std::size_t... Position>
std::tuple<T...> sampleValues(std::index_sequence<Position...> /*positions*/) {
  return {sampleValue<T>(Position)...};
}

// The arguments of a call, each as the bits it is made of.
using Call = std::vector<std::uint64_t>;
std::vector<Call> calls;

template <class T>
std::uint64_t bitsOf(T value) {
  std::uint64_t bits = 0;
  static_assert(sizeof value <= sizeof bits);
  std::memcpy(&bits, &value, sizeof value);
  return bits;
}

// A function of the host that keeps what it was called with and gives a sample answer.
template <class R, class... Arguments>
struct Recorder {
  static R function(Arguments... arguments) {
    calls.push_back({bitsOf(arguments)...});
    if constexpr (!std::is_void_v<R>) return answer();
  }
  static std::tuple<Arguments...> samples() {
    return sampleValues<Arguments...>(std::index_sequence_for<Arguments...>{});
  }
  static R answer() { return sampleValue<R>(20); }

  template <class Wrapper>
  static void expectCallArrives(Wrapper& wrapper) {
    calls.clear();
    if constexpr (std::is_void_v<R>) {
      std::apply(wrapper, samples());
    } else {
      EXPECT_EQ(std::apply(wrapper, samples()), answer());
    }
    const auto bits = [](Arguments... arguments) { return Call{bitsOf(arguments)...}; };
    EXPECT_EQ(calls, std::vector<Call>{std::apply(bits, samples())});
  }

  template <class Wrapper>
  static void expectCallIsSkipped(Wrapper& wrapper) {
    calls.clear();
    if constexpr (std::is_void_v<R>) {
      std::apply(wrapper, samples());
    } else {
      EXPECT_EQ(std::apply(wrapper, samples()), R{});
    }
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(storageUntouched());
  }
};

class HostTest : public testing::Test {
 protected:
  void SetUp() override {
    tests::makePluginFresh();
    gResolver = resolve;
    entryPoints = {};
    frameworkMethods = {};
    firstArgumentsOfLoad.clear();
    storage.fill(kUntouched);
  }
};

// --- what every wrapper of one function promises

template <class Function, class Wrapper>
void expectFoundOnce(Directory& host, const char* name, Wrapper& wrapper) {
  host.add(name, Function::function);
  Function::expectCallArrives(wrapper);
  Function::expectCallArrives(wrapper);
  EXPECT_EQ(host.asked, Names{name});
}

template <class Function, class Wrapper>
void expectMissingIsSkipped(Directory& host, const char* name, Wrapper& wrapper) {
  Function::expectCallIsSkipped(wrapper);
  Function::expectCallIsSkipped(wrapper);
  EXPECT_EQ(host.asked, (Names{name, name}));
}

template <class Function, class Wrapper>
void expectFoundLater(Directory& host, const char* name, Wrapper& wrapper) {
  Function::expectCallIsSkipped(wrapper);
  host.add(name, Function::function);
  Function::expectCallArrives(wrapper);
  host.known.clear();
  Function::expectCallArrives(wrapper);
  EXPECT_EQ(host.asked, (Names{name, name}));
}

class FrameworkMethodTest : public HostTest {
 protected:
  void SetUp() override {
    HostTest::SetUp();
    entryPoints.add("REALLoadGlobalMethod", loadGlobalMethod);
  }
};

// --- what every wrapper of an array's procedures promises

using Procedure = void (*)();
Procedure procedureOfArray = nullptr;
std::vector<REALarray> arraysAsked;

Procedure giveProcedure(REALarray array) {
  arraysAsked.push_back(array);
  return procedureOfArray;
}

class ArrayRoutineTest : public HostTest {
 protected:
  void SetUp() override {
    HostTest::SetUp();
    arraysAsked.clear();
    procedureOfArray = nullptr;
  }
};

template <class Function>
Procedure procedure() {
  return reinterpret_cast<Procedure>(&Function::function);
}

template <class Function, class Wrapper>
void expectArrayIsAskedEveryTime(const char* name, Wrapper& wrapper) {
  entryPoints.add(name, giveProcedure);
  procedureOfArray = procedure<Function>();
  Function::expectCallArrives(wrapper);
  Function::expectCallArrives(wrapper);
  EXPECT_EQ(entryPoints.asked, Names{name});
  EXPECT_EQ(arraysAsked, (std::vector{sampleValue<REALarray>(0), sampleValue<REALarray>(0)}));
}

template <class Function, class Wrapper>
void expectMissingArrayServiceIsSkipped(const char* name, Wrapper& wrapper) {
  Function::expectCallIsSkipped(wrapper);
  EXPECT_EQ(entryPoints.asked, Names{name});
}

template <class Function, class Wrapper>
void expectArrayServiceFoundLater(const char* name, Wrapper& wrapper) {
  Function::expectCallIsSkipped(wrapper);
  entryPoints.add(name, giveProcedure);
  procedureOfArray = procedure<Function>();
  Function::expectCallArrives(wrapper);
  EXPECT_EQ(entryPoints.asked, (Names{name, name}));
}

template <class Function, class Wrapper>
void expectArrayWithoutProcedureIsSkipped(const char* name, Wrapper& wrapper) {
  entryPoints.add(name, giveProcedure);
  Function::expectCallIsSkipped(wrapper);
  procedureOfArray = procedure<Function>();
  Function::expectCallArrives(wrapper);
  EXPECT_EQ(entryPoints.asked, Names{name});
}

#define HOST_ROUTINE(wrapper, entryPoint, doc, ...)                                  \
  TEST_F(HostTest, wrapper##IsFoundOnce) {                                           \
    expectFoundOnce<Recorder<__VA_ARGS__>>(entryPoints, entryPoint, wrapper);        \
  }                                                                                  \
  TEST_F(HostTest, wrapper##IsSkippedWhenMissing) {                                  \
    expectMissingIsSkipped<Recorder<__VA_ARGS__>>(entryPoints, entryPoint, wrapper); \
  }                                                                                  \
  TEST_F(HostTest, wrapper##IsFoundLater) {                                          \
    expectFoundLater<Recorder<__VA_ARGS__>>(entryPoints, entryPoint, wrapper);       \
  }
#define FRAMEWORK_METHOD(wrapper, declaration, doc, ...)                                   \
  TEST_F(FrameworkMethodTest, wrapper##IsFoundOnce) {                                      \
    expectFoundOnce<Recorder<__VA_ARGS__>>(frameworkMethods, declaration, wrapper);        \
    EXPECT_EQ(firstArgumentsOfLoad, std::vector<REALobject>{nullptr});                     \
  }                                                                                        \
  TEST_F(FrameworkMethodTest, wrapper##IsSkippedWhenMissing) {                             \
    expectMissingIsSkipped<Recorder<__VA_ARGS__>>(frameworkMethods, declaration, wrapper); \
  }                                                                                        \
  TEST_F(FrameworkMethodTest, wrapper##IsFoundLater) {                                     \
    expectFoundLater<Recorder<__VA_ARGS__>>(frameworkMethods, declaration, wrapper);       \
  }
#define ARRAY_ROUTINE(wrapper, entryPoint, doc, ...)                                           \
  TEST_F(ArrayRoutineTest, wrapper##AsksTheArrayEveryTime) {                                   \
    expectArrayIsAskedEveryTime<Recorder<void, REALarray, __VA_ARGS__>>(entryPoint, wrapper);  \
  }                                                                                            \
  TEST_F(ArrayRoutineTest, wrapper##IsSkippedWhenMissing) {                                    \
    expectMissingArrayServiceIsSkipped<Recorder<void, REALarray, __VA_ARGS__>>(entryPoint,     \
                                                                               wrapper);       \
  }                                                                                            \
  TEST_F(ArrayRoutineTest, wrapper##IsFoundLater) {                                            \
    expectArrayServiceFoundLater<Recorder<void, REALarray, __VA_ARGS__>>(entryPoint, wrapper); \
  }                                                                                            \
  TEST_F(ArrayRoutineTest, wrapper##IsSkippedWithoutProcedure) {                               \
    expectArrayWithoutProcedureIsSkipped<Recorder<void, REALarray, __VA_ARGS__>>(entryPoint,   \
                                                                                 wrapper);     \
  }
#include "plugin/host_routines.def"
#undef HOST_ROUTINE
#undef FRAMEWORK_METHOD
#undef ARRAY_ROUTINE

// The names are the host's: written out here a second time, so that a slip in the list shows.
TEST_F(HostTest, EveryEntryPointIsAskedForByItsName) {
  Names names;
#define HOST_ROUTINE(wrapper, entryPoint, doc, ...) names.emplace_back(#wrapper " " entryPoint);
#define FRAMEWORK_METHOD HOST_ROUTINE
#define ARRAY_ROUTINE HOST_ROUTINE
#include "plugin/host_routines.def"
#undef HOST_ROUTINE
#undef FRAMEWORK_METHOD
#undef ARRAY_ROUTINE
  const Names expected = {
      "REALLockObject REALLockObject",
      "REALUnlockObject REALUnlockObject",
      "REALnewInstance PluginNewInstance",
      "REALRaiseException RuntimeRaiseException",
      "REALObjectIsA RuntimeObjectIsa",
      "REALGetClassRef pluginObjectType",
      "REALLoadObjectMethod REALLoadObjectMethod",
      "pLoadGlobalMethod REALLoadGlobalMethod",
      "REALRegisterClass PluginRegisterClass",
      "REALGetPropValueInt32 REALGetPropValueInt",
      "REALGetPropValueInt64 REALGetPropValueInt64",
      "REALGetPropValueSingle REALGetPropValueSingle",
      "REALGetPropValueDouble REALGetPropValueDouble",
      "REALGetPropValueString REALGetPropValueString",
      "REALGetPropValueObject REALGetPropValueObject",
      "REALSetPropValueInt32 REALSetPropValueInt",
      "REALSetPropValueString REALSetPropValueString",
      "REALNewVariantString StringToVariant",
      "REALNewVariantInteger Int32ToVariant",
      "REALNewVariantUInt32 UInt32ToVariant",
      "REALNewVariantInt64 Int64ToVariant",
      "REALNewVariantUInt64 UInt64ToVariant",
      "REALNewVariantSingle SingleToVariant",
      "REALNewVariantDouble DoubleToVariant",
      "REALNewVariantBoolean BooleanToVariant",
      "GetVariantType VarType(value As Variant) As Int32",
      "GetVariantInt32 VariantToInt32",
      "GetVariantInt64 VariantToInt64",
      "GetVariantSingle VariantToSingle",
      "GetVariantDouble VariantToDouble",
      "GetVariantString VariantToString",
      "REALLockString REALLockString",
      "REALUnlockString REALUnlockString",
      "originalREALBuildString REALBuildString",
      "REALSetStringEncoding REALSetStringEncoding",
      "REALGetStringEncoding REALGetStringEncoding",
      "REALConvertString REALConvertString",
      "REALGetStringCFString REALGetStringCFString",
      "pCopyStringCFString REALGetStringCFString",
      "PluginGetStringData PluginGetStringData",
      "StringGetCString StringGetCString",
      "LenB LenB( s as string ) as integer",
      "REALDisposeStringData PluginDisposeStringData",
      "REALCreateArray RuntimeArrayCreateSingleDimBoundedArray",
      "REALGetArrayUBound RuntimeUBound",
      "REALGetArrayString RuntimeDirectReadStringArray",
      "REALGetArrayObject RuntimeDirectReadObjectArray",
      "REALInsertArrayValueString RuntimeArrayDirectGetInsertProc",
      "REALInsertArrayValueObject RuntimeArrayDirectGetInsertProc",
      "REALGetArrayValueInt32 RuntimeArrayDirectGetGetProc",
      "REALGetArrayValueInt64 RuntimeArrayDirectGetGetProc",
      "REALGetArrayValueUInt8 RuntimeArrayDirectGetGetProc",
      "REALGetArrayValueSingle RuntimeArrayDirectGetGetProc",
      "REALGetArrayValueDouble RuntimeArrayDirectGetGetProc",
      "REALGetArrayValueString RuntimeArrayDirectGetGetProc",
      "REALGetArrayValueObject RuntimeArrayDirectGetGetProc",
      "REALNewMemoryBlockOriginal newMemoryBlock",
      "REALMemoryBlockGetPtr memoryBlockGetPtr",
      "REALMemoryBlockGetSize memoryBlockGetSize",
      "REALFolderItemFromFSSpec FolderItemFromFSSpec",
      "REALFSSpecFromFolderItem REALFSSpecFromFolderItem",
      "REALFSRefFromFolderItem REALFSRefFromFolderItem",
      "REALFolderItemFromParentFSRef REALFolderItemFromParentFSRef",
  };
  EXPECT_EQ(names, expected);
}

TEST_F(HostTest, TheTwoNativeStringWrappersKeepSeparateCaches) {
  using Conversion = Recorder<CFStringRef, REALstring, unsigned char>;
  const auto string = sampleValue<REALstring>(0);
  EXPECT_EQ(REALCopyStringCFString(string), nullptr);
  entryPoints.add("REALGetStringCFString", Conversion::function);
  calls.clear();
  EXPECT_EQ(REALGetStringCFString(string, 0), Conversion::answer());
  EXPECT_EQ(REALCopyStringCFString(string), Conversion::answer());
  EXPECT_EQ(entryPoints.asked,
            (Names{"REALGetStringCFString", "REALGetStringCFString", "REALGetStringCFString"}));
  EXPECT_EQ(calls, (std::vector<Call>{{bitsOf(string), 0}, {bitsOf(string), 0}}));
}

TEST_F(FrameworkMethodTest, AMethodIsLoadedByItsDeclarationAndNullFirst) {
  frameworkMethods.add("Beep(times as integer)", resolve);
  EXPECT_EQ(REALLoadFrameworkMethod("Beep(times as integer)"), reinterpret_cast<void*>(resolve));
  EXPECT_EQ(REALLoadFrameworkMethod("Quack()"), nullptr);
  EXPECT_EQ(frameworkMethods.asked, (Names{"Beep(times as integer)", "Quack()"}));
  EXPECT_EQ(firstArgumentsOfLoad, (std::vector<REALobject>{nullptr, nullptr}));
}

TEST_F(HostTest, AMethodIsNotLoadedFromAHostWithoutTheService) {
  EXPECT_EQ(REALLoadFrameworkMethod("Beep(times as integer)"), nullptr);
  EXPECT_EQ(entryPoints.asked, Names{"REALLoadGlobalMethod"});
}

}  // namespace
}  // namespace zel
