// What crosses between the reference host and a plugin, and that all of it does so at the border.
#include "host/border.h"

#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

using host::Border;
using host::Host;
using host::ObjectRef;
using host::Value;

int entered;
std::vector<void*> handedOut;

constexpr Border kCounting = {.enter =
                                  [](void (*body)(void*), void* context) {
                                    ++entered;
                                    body(context);
                                  },
                              .outward =
                                  [](void* function) {
                                    handedOut.push_back(function);
                                    return function;
                                  }};

class HostBorderTest : public HostTest {
 protected:
  HostBorderTest() {
    start({.border = kCounting});
    forget();
  }
  static void forget() {
    entered = 0;
    handedOut.clear();
  }
};

TEST_F(HostBorderTest, TheStartIsACallIntoThePlugin) {
  load();
  EXPECT_EQ(entered, 1);
}

TEST_F(HostBorderTest, HooksAndMethodsAreCallsIntoThePlugin) {
  load();
  forget();
  ObjectRef object = host->make("SampleZEL");
  EXPECT_EQ(entered, 1);
  host->call(object, "convert", {std::int32_t{1}});
  EXPECT_EQ(entered, 2);
  host->assign(object, "count", {"key"}, std::int32_t{1});
  EXPECT_EQ(entered, 3);
  object.reset();
  EXPECT_EQ(entered, 4);
}

TEST_F(HostBorderTest, EntryPointsAreHandedOut) {
  void* const found = Host::resolver()("REALLockObject");
  EXPECT_EQ(handedOut, std::vector<void*>{found});
  EXPECT_EQ(Host::resolver()("no such entry point"), nullptr);
  EXPECT_EQ(handedOut.size(), 1U);
}

TEST_F(HostBorderTest, MethodsAndProceduresAreHandedOut) {
  const auto loadGlobal = entryPoint<void*(void*, const char*)>("REALLoadGlobalMethod");
  const auto loadObject = entryPoint<void*(void*, const char*)>("REALLoadObjectMethod");
  const auto insertProcedure = entryPoint<void*(void*)>("RuntimeArrayDirectGetInsertProc");
  const auto readProcedure = entryPoint<void*(void*)>("RuntimeArrayDirectGetGetProc");
  forget();
  const ObjectRef dictionary = host->dictionary();
  const ObjectRef array = host->array(Host::kStringElements, {});
  const std::vector<void*> given = {
      loadGlobal(nullptr, "LenB( s as string ) as integer"),
      loadObject(dictionary.handle(), "Key(index As Integer) As Variant"),
      insertProcedure(array.handle()), readProcedure(array.handle())};
  EXPECT_EQ(handedOut, given);
  for (void* const function : given) EXPECT_NE(function, nullptr);
  EXPECT_EQ(loadObject(dictionary.handle(), "NoSuchMethod(index As Integer)"), nullptr);
  EXPECT_EQ(handedOut.size(), 4U);
}

}  // namespace
}  // namespace tests
