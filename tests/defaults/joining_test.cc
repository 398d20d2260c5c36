// Joining the family of plugins: by the functions of an object's life, before anything else, and
// outside of the guard.
#include <ostream>

#include "native/exceptions.h"
#include "plugin/methods.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

const char* const kClass = "NSUserDefaultsZEL";

struct JoiningCase {
  const char* name;
  void (*call)(Host& host, const ObjectRef& object);  // an object that isn't constructed
};

void PrintTo(const JoiningCase& row, std::ostream* out) { *out << row.name; }

class JoiningTest : public PluginTest, public testing::WithParamInterface<JoiningCase> {
 protected:
  // The object is there before the family is.
  void SetUp() override {
    PluginTest::SetUp();
    object = host->make(kClass);
    provideFamily();
    foundation.clearRecords();
  }
  void TearDown() override {
    object.reset();
    PluginTest::TearDown();
  }
  // Lets a hook of the family raise until it is provided again, and calls.
  void expectRaisesInto(const char* hook) {
    SCOPED_TRACE(hook);
    static id thrown = nullptr;
    thrown = foundation.exception("Hook", "Not now.");
    foundation.addClassMethod("NSException", hook, [](id, SEL) { objc_exception_throw(thrown); });
    EXPECT_EQ(catching([&] { GetParam().call(*host, object); }), thrown);
    EXPECT_EQ(foundation.log(), Lines{});
    EXPECT_EQ(host->takePending(), std::vector<Raised>{});
    EXPECT_EQ(host->sequence(), Lines{});
  }

  ObjectRef object;
};

TEST_P(JoiningTest, ComesBeforeAnythingElse) {
  GetParam().call(*host, object);
  const Lines& messages = foundation.messages();
  ASSERT_GE(messages.size(), 4U);
  const Lines first(messages.begin(), messages.begin() + 4);
  EXPECT_EQ(first,
            (Lines{"+[NSException respondsToSelector:]", "+[NSException GetInstancesDictionaryZEL]",
                   "+[NSException respondsToSelector:]", "+[NSException PrepareNSExceptionZEL]"}));
}

TEST_P(JoiningTest, IsNotGuarded) {
  expectRaisesInto("GetInstancesDictionaryZEL");
  family->provideInstances(foundation.pointerTable());
  expectRaisesInto("PrepareNSExceptionZEL");
  family->providePreparation();
}

INSTANTIATE_TEST_SUITE_P(
    Functions, JoiningTest,
    testing::Values(
        JoiningCase{
            "ConstructorHook",
            [](Host&, const ObjectRef& object) { NSUserDefaultsConstructor(object.handle()); }},
        JoiningCase{
            "Destructor",
            [](Host&, const ObjectRef& object) { NSUserDefaultsDestructor(object.handle()); }},
        JoiningCase{"Constructor",
                    [](Host& host, const ObjectRef& object) { host.call(object, "Constructor"); }},
        JoiningCase{"ConstructorUser",
                    [](Host& host, const ObjectRef& object) {
                      host.call(object, "Constructor", {std::string("alice")});
                    }},
        JoiningCase{
            "standardUserDefaults",
            [](Host& host, const ObjectRef&) { host.callShared(kClass, "standardUserDefaults"); }},
        JoiningCase{"resetStandardUserDefaults",
                    [](Host& host, const ObjectRef&) {
                      host.callShared(kClass, "resetStandardUserDefaults");
                    }}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace zel
