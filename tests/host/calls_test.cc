// How programs in the reference host call a plugin's methods.
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

using host::Host;
using host::ObjectRef;
using host::Outcome;
using host::Raised;
using host::Text;
using host::Value;

class HostCallsTest : public HostTest {
 protected:
  HostCallsTest() {
    load();
    sample = host->make("SampleZEL");
  }
  void TearDown() override {
    sample.reset();
    HostTest::TearDown();
  }

  Value ask(const std::string& method, const std::vector<Value>& arguments = {}) {
    return host->call(sample, method, arguments).value;
  }

  /// What the host says about a mistake of the test.
  template <class Mistake>
  static std::string complaint(const Mistake& mistake) {
    try {
      mistake();
    } catch (const std::invalid_argument& error) {
      return error.what();
    }
    return "no complaint";
  }

  ObjectRef sample;
};

TEST_F(HostCallsTest, PassesAndReturnsEveryType) {
  EXPECT_EQ(ask("convert", {std::int32_t{2147483647}}), Value(std::int32_t{-2147483647}));
  EXPECT_EQ(ask("convert", {0.5F}), Value(0.25F));
  EXPECT_EQ(ask("convert", {1.5}), Value(0.5));
  EXPECT_EQ(ask("convert", {std::int8_t{-1}}), Value(std::int8_t{-1}));
  EXPECT_EQ(ask("convert", {std::int8_t{0x7F}}), Value(std::int8_t{0x7F}));
  EXPECT_EQ(ask("convert", {"text"}), Value("text"));
  EXPECT_EQ(ask("mixed", {1.5F, "b", 20.25, std::int8_t{1}, 300}), Value(1322.75));
}

TEST_F(HostCallsTest, PassesEmptyStringsAsNull) {
  EXPECT_EQ(ask("isEmpty", {""}), Value(std::int8_t{1}));
  EXPECT_EQ(ask("isEmpty", {Text("", 0x600)}), Value(std::int8_t{1}));
  EXPECT_EQ(ask("isEmpty", {" "}), Value(std::int8_t{0}));
  EXPECT_EQ(ask("convert", {""}), Value(""));
}

TEST_F(HostCallsTest, KeepsTheBytesAndEncodingOfOtherStrings) {
  const Text latin(std::string("caf\xE9\0!", 6), 0x201);
  EXPECT_EQ(ask("convert", {latin}), Value(latin));
  EXPECT_EQ(ask("convert", {Text("raw")}), Value(Text("raw", 0xFFFF)));
}

TEST_F(HostCallsTest, PassesObjectsAndArrays) {
  EXPECT_EQ(ask("self"), Value(sample));
  EXPECT_EQ(ask("sameSample", {sample}), Value(sample));
  EXPECT_EQ(ask("sameSample", {Value()}), Value(ObjectRef()));
  EXPECT_EQ(ask("sameSample", {ObjectRef()}), Value(ObjectRef()));
  const ObjectRef strings = host->array(Host::kStringElements, {"a"});
  const ObjectRef objects = host->array(Host::kObjectElements, {sample});
  EXPECT_EQ(ask("sameStrings", {strings}), Value(strings));
  EXPECT_EQ(ask("sameVariants", {objects}), Value(objects));
  EXPECT_EQ(ask("sameVariant", {objects}), Value(objects));
  EXPECT_EQ(ask("sameVariant", {sample}), Value(sample));
  EXPECT_THROW(ask("sameStrings", {objects}), std::invalid_argument);
  EXPECT_THROW(ask("sameVariants", {strings}), std::invalid_argument);
  EXPECT_THROW(ask("sameSample", {strings}), std::invalid_argument);
  EXPECT_THROW(ask("sameSample", {host->make("RuntimeException")}), std::invalid_argument);
}

TEST_F(HostCallsTest, FindsMethodsInAnyCase) {
  EXPECT_EQ(ask("CONVERT", {7}), Value(std::int32_t{-7}));
}

TEST_F(HostCallsTest, RunsHooksAndConstructors) {
  EXPECT_EQ(SamplePlugin::current().constructed, 1);
  EXPECT_EQ(ask("number"), Value(std::int32_t{0}));
  const ObjectRef plain = host->construct("SampleZEL");
  const ObjectRef numbered = host->construct("SampleZEL", {40});
  EXPECT_EQ(SamplePlugin::current().constructed, 3);
  EXPECT_EQ(host->call(plain, "number").value, Value(std::int32_t{1}));
  EXPECT_EQ(host->call(numbered, "number").value, Value(std::int32_t{40}));
  sample.reset();
  EXPECT_EQ(SamplePlugin::current().destroyed, 1);
}

TEST_F(HostCallsTest, CallsSharedMethods) {
  EXPECT_EQ(host->callShared("SampleZEL", "version").value, Value(Text("1.0", 0xFFFF)));
  const Outcome made = host->callShared("SampleZEL", "make");
  EXPECT_EQ(host->call(std::get<ObjectRef>(made.value), "number").value, Value(std::int32_t{0}));
  EXPECT_THROW(host->callShared("SampleZEL", "number"), std::invalid_argument);
  EXPECT_THROW(ask("version"), std::invalid_argument);
}

TEST_F(HostCallsTest, AssignsThroughTheSetterOfAGetter) {
  const Outcome outcome = host->assign(sample, "count", {"key"}, 5);
  EXPECT_EQ(outcome.value, Value());
  EXPECT_EQ(SamplePlugin::current().stored, 5);
  EXPECT_EQ(SamplePlugin::current().storedKey, "key");
  EXPECT_EQ(ask("count", {"key"}), Value(std::int32_t{5}));
}

TEST_F(HostCallsTest, AssignsToMethodsThatSayAssigns) {
  host->assign(sample, "total", {"all"}, 6);
  EXPECT_EQ(SamplePlugin::current().stored, 6);
  EXPECT_EQ(SamplePlugin::current().storedKey, "all");
  EXPECT_THROW(ask("total", {"all", 6}), std::invalid_argument);
}

TEST_F(HostCallsTest, KnowsWhatCanBeAssignedTo) {
  EXPECT_TRUE(host->assignable("SampleZEL", "count"));
  EXPECT_TRUE(host->assignable("SampleZEL", "Total"));
  EXPECT_FALSE(host->assignable("SampleZEL", "convert"));
  EXPECT_FALSE(host->assignable("SampleZEL", "setCountValue"));
  EXPECT_THROW((void)host->assignable("SampleZEL", "nothing"), std::invalid_argument);
  EXPECT_EQ(complaint([this] { host->assign(sample, "number", {}, 1); }),
            "SampleZEL.number: it has no setter. There is:\n  number as integer");
  EXPECT_EQ(complaint([this] { host->assign(sample, "setCountValue", {"key"}, 1); }),
            "SampleZEL.setCountValue: no method takes such arguments. There is:\n"
            "  setCountValue(key as string, value as integer)");
}

TEST_F(HostCallsTest, SaysWhichDeclarationsThereAre) {
  EXPECT_EQ(complaint([this] { ask("count", {5}); }),
            "SampleZEL.count: no method takes such arguments. There is:\n"
            "  count(key as string) as integer");
  EXPECT_EQ(complaint([this] { host->callShared("SampleZEL", "nothing"); }),
            "SampleZEL.nothing: no method takes such arguments. There is:\n"
            "  version as string\n  make as SampleZEL");
  EXPECT_THROW(host->make("NoClass"), std::invalid_argument);
  EXPECT_THROW(host->call(ObjectRef(), "number"), std::invalid_argument);
}

TEST_F(HostCallsTest, ReportsWhatWasRaised) {
  EXPECT_EQ(host->call(sample, "raise", {0}).raised, std::nullopt);
  const Outcome once = host->call(sample, "raise", {1});
  EXPECT_EQ(once.raised, (Raised{"UnsupportedOperationException", std::nullopt, 0}));
  EXPECT_EQ(once.raisedCount, 1);
  const Outcome thrice = host->call(sample, "raise", {3});
  EXPECT_EQ(thrice.raised, (Raised{"UnsupportedOperationException", std::nullopt, 0}));
  EXPECT_EQ(thrice.raisedCount, 3);
  EXPECT_EQ(host->takePending().size(), 0U);
}

TEST_F(HostCallsTest, LetsNativeExceptionsPass) {
  EXPECT_THROW(ask("throw", {"text"}), std::string);
  EXPECT_EQ(host->references(sample.handle()), 1);
}

TEST_F(HostCallsTest, FindsMethodsOfSuperClasses) {
  std::int32_t (*const base)(zel::REALobject) = [](zel::REALobject) { return 1; };
  std::int32_t (*const derived)(zel::REALobject) = [](zel::REALobject) { return 2; };
  host->addClass("Base", "");
  host->addClass("Derived", "Base");
  for (const char* const declaration : {"kept as integer", "replaced as integer"})
    host->addMethod("Base", declaration, reinterpret_cast<host::PluginFunction>(base));
  host->addMethod("Derived", "replaced as integer",
                  reinterpret_cast<host::PluginFunction>(derived));
  const ObjectRef object = host->make("Derived");
  EXPECT_EQ(host->call(object, "kept").value, Value(std::int32_t{1}));
  EXPECT_EQ(host->call(object, "replaced").value, Value(std::int32_t{2}));
}

TEST_F(HostCallsTest, RejectsAResultThatIsNoHandle) {
  zel::REALobject (*const wrong)(zel::REALobject) = [](zel::REALobject) {
    static int nobody = 0;
    return reinterpret_cast<zel::REALobject>(&nobody);
  };
  host->addMethod("SampleZEL", "wrong as SampleZEL", reinterpret_cast<host::PluginFunction>(wrong));
  EXPECT_EQ(ask("wrong"), Value(ObjectRef()));
  EXPECT_EQ(takeFailures(), std::vector<std::string>{
                                "the result of a method was given a handle that isn't the host's"});
}

TEST_F(HostCallsTest, LoadsMethodsByDeclaration) {
  const auto load = entryPoint<void*(zel::REALobject, const char*)>("REALLoadObjectMethod");
  const auto* const methods = host->findClass("SampleZEL")->methods.data();
  const auto address = [](host::PluginFunction f) { return reinterpret_cast<void*>(f); };
  EXPECT_EQ(load(sample.handle(), "Count(k As String) As Integer"), address(methods[3].function));
  EXPECT_EQ(load(sample.handle(), "Count(k As String, Assigns v As Integer)"),
            address(methods[3].setter));
  EXPECT_EQ(load(sample.handle(), "Total(k As String, Assigns v As Integer)"),
            address(methods[5].function));
  EXPECT_EQ(load(sample.handle(), "Count(k As String)"), nullptr);
  EXPECT_EQ(load(host->array(Host::kStringElements).handle(), "number as integer"), nullptr);
  EXPECT_EQ(load(sample.handle(), "number integer"), nullptr);
  EXPECT_EQ(takeFailures(),
            std::vector<std::string>{"REALLoadObjectMethod was given a bad declaration \"number "
                                     "integer\": expected \"as\" or the end at column 8, found "
                                     "\"integer\""});
}

}  // namespace
}  // namespace tests
