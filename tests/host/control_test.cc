// How the reference host is told to fail, and what it records.
#include <gtest/gtest.h>
#include <map>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

#include "host/internal/entry_points.h"
#include "native/files.h"
#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

using Lines = std::vector<std::string>;
using host::Host;
using host::internal::signatureOf;
using zel::REALobject;
using zel::REALstring;

void* resolve(const char* name) { return Host::resolver()(name); }

TEST_F(HostTest, HidesEntryPoints) {
  host->hide("REALLockString");
  EXPECT_EQ(resolve("REALLockString"), nullptr);
  EXPECT_EQ(resolve("REALLockString"), nullptr);
  EXPECT_NE(resolve("REALUnlockString"), nullptr);
  host->unhide("REALLockString");
  EXPECT_NE(resolve("REALLockString"), nullptr);
  EXPECT_EQ(host->lookups("REALLockString"), 3);
  EXPECT_EQ(host->lookups("REALUnlockString"), 1);
}

TEST_F(HostTest, HidesEntryPointsForAWhile) {
  host->hideFirst("REALLockString", 2);
  EXPECT_EQ(resolve("REALLockString"), nullptr);
  EXPECT_EQ(resolve("REALLockString"), nullptr);
  EXPECT_NE(resolve("REALLockString"), nullptr);
}

TEST_F(HostTest, AnswersNullWhenTold) {
  const auto make = entryPoint<REALobject(const char*)>("PluginNewInstance");
  const auto makes = [make] {
    return static_cast<bool>(host::ObjectRef::adopt(make("RuntimeException")));
  };
  host->answerNull("PluginNewInstance", 2);
  EXPECT_TRUE(makes());
  EXPECT_FALSE(makes());
  EXPECT_TRUE(makes());
  host->answerNull("PluginNewInstance");
  EXPECT_FALSE(makes());
  EXPECT_FALSE(makes());
  host->answerAgain("PluginNewInstance");
  EXPECT_TRUE(makes());
  EXPECT_EQ(host->calls("PluginNewInstance"), 6);
  EXPECT_THROW(host->answerNull("PluginNewInstance", -1), std::invalid_argument);
}

TEST_F(HostTest, RecordsTheSequenceOfCalls) {
  const REALstring string =
      entryPoint<REALstring(const char*, std::int32_t)>("REALBuildString")("a", 1);
  const auto unlock = entryPoint<void(REALstring)>("REALUnlockString");
  entryPoint<void(REALstring)>("REALLockString")(string);
  unlock(string);
  unlock(string);
  EXPECT_EQ(host->sequence(),
            (Lines{"REALBuildString", "REALLockString", "REALUnlockString", "REALUnlockString"}));
  EXPECT_EQ(host->calls("REALUnlockString"), 2);
  host->clearRecords();
  EXPECT_EQ(host->sequence(), Lines{});
  EXPECT_EQ(host->calls("REALUnlockString"), 0);
  EXPECT_EQ(host->lookups("REALUnlockString"), 0);
}

TEST_F(HostTest, TellsOfCallsBeforeTheyAreCarriedOut) {
  Lines told;
  const auto build = entryPoint<REALstring(const char*, std::int32_t)>("REALBuildString");
  const auto unlock = entryPoint<void(REALstring)>("REALUnlockString");
  REALstring string = nullptr;
  host->onCall([&](std::string_view name) {
    told.push_back(std::string(name) + " " + std::to_string(host->references(string)));
  });
  string = build("a", 1);
  unlock(string);
  host->onCall(nullptr);
  EXPECT_EQ(build("a", 0), nullptr);
  EXPECT_EQ(told, (Lines{"REALBuildString 0", "REALUnlockString 1"}));
}

TEST_F(HostTest, MayDoWithoutTheSequence) {
  start({.keepSequence = false});
  entryPoint<double()>("REALGetRBVersion")();
  EXPECT_EQ(host->sequence(), Lines{});
  EXPECT_EQ(host->calls("REALGetRBVersion"), 1);
}

TEST_F(HostTest, KnowsWhichNamesThereAre) {
  EXPECT_EQ(resolve("NoSuchThing"), nullptr);
  EXPECT_EQ(resolve(nullptr), nullptr);
  EXPECT_EQ(takeFailures(), Lines{"the resolver was given no name"});
  EXPECT_THROW(host->hide("NoSuchThing"), std::invalid_argument);
  EXPECT_THROW((void)host->calls("NoSuchThing"), std::invalid_argument);
}

// --- the plugin's list of host routines: the same names, the same types

struct Listed {
  const char* entryPoint;
  const std::type_info& signature;
};

template <class R, class... Arguments>
const std::type_info& typeOf() {
  return typeid(R(Arguments...));
}

const std::vector<Listed>& listedRoutines() {
  using namespace zel;  // NOLINT(google-build-using-namespace): the list speaks of these types
#define HOST_ROUTINE(wrapper, entryPoint, doc, ...) {entryPoint, typeOf<__VA_ARGS__>()},
#define ARRAY_ROUTINE(wrapper, entryPoint, ...) {entryPoint, typeOf<void*, REALarray>()},
#define FRAMEWORK_METHOD(...)
  static const std::vector<Listed> kListed = {
#include "plugin/host_routines.def"
  };
#undef HOST_ROUTINE
#undef ARRAY_ROUTINE
#undef FRAMEWORK_METHOD
  return kListed;
}

TEST_F(HostTest, AnswersThePluginsListWithTheSameTypes) {
  ASSERT_GE(listedRoutines().size(), 54U);
  for (const Listed& listed : listedRoutines()) {
    EXPECT_EQ(host->lookups(listed.entryPoint), 0) << listed.entryPoint;  // it is a known name
    EXPECT_NE(resolve(listed.entryPoint), nullptr) << listed.entryPoint;
    host->clearRecords();
    const std::type_info* const signature = signatureOf(listed.entryPoint);
    ASSERT_NE(signature, nullptr) << listed.entryPoint;
    EXPECT_EQ(*signature, listed.signature) << listed.entryPoint;
  }
}

TEST_F(HostTest, AnswersWhatThePluginAsksForAtStart) {
  EXPECT_EQ(*signatureOf("RegisterPluginVersion"), typeid(void(std::int32_t)));
  EXPECT_EQ(*signatureOf("REALGetRBVersion"), typeid(double()));
}

}  // namespace
}  // namespace tests
