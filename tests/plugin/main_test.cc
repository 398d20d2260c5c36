// Start-up, against a host of three entry points.
#include "plugin/main.h"

#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "plugin/tables.h"
#include "tests/support/fresh_plugin.h"

namespace zel {
namespace {

using Events = std::vector<std::string>;

Events events;
double hostVersion = 0.0;
bool hostTakesVersions = true;
bool hostTellsVersion = true;
bool hostRegistersClasses = true;
std::vector<std::int32_t> announced;
std::vector<REALclassDefinition*> registered;

void announce(std::int32_t version) {
  events.emplace_back("announce");
  announced.push_back(version);
}

double tellVersion() {
  events.emplace_back("tell version");
  return hostVersion;
}

void registerClass(REALclassDefinition* definition) {
  events.emplace_back("register class");
  registered.push_back(definition);
}

void* resolve(const char* rawName) {
  const std::string name = rawName;
  events.push_back("find " + name);
  if (name == "RegisterPluginVersion" && hostTakesVersions) {
    return reinterpret_cast<void*>(announce);
  }
  if (name == "REALGetRBVersion" && hostTellsVersion) return reinterpret_cast<void*>(tellVersion);
  if (name == "PluginRegisterClass" && hostRegistersClasses) {
    return reinterpret_cast<void*>(registerClass);
  }
  return nullptr;
}

class MainTest : public testing::Test {
 protected:
  void SetUp() override {
    tests::makePluginFresh();
    events.clear();
    announced.clear();
    registered.clear();
    hostVersion = 2014.0;
    hostTakesVersions = true;
    hostTellsVersion = true;
    hostRegistersClasses = true;
  }
  static void startIn(double version) {
    hostVersion = version;
    REALPluginMain(resolve);
  }
};

TEST_F(MainTest, StartsInAFixedOrder) {
  REALPluginMain(resolve);
  EXPECT_EQ(events, (Events{"find RegisterPluginVersion", "find REALGetRBVersion", "tell version",
                            "announce", "find PluginRegisterClass", "register class"}));
  EXPECT_EQ(gResolver, &resolve);
  EXPECT_EQ(rbversion, 2014.0);
  EXPECT_EQ(registered, std::vector{&NSUserDefaultsClass});
}

struct VersionCase {
  double host;
  std::int32_t control;
};

class ControlVersionTest : public MainTest, public testing::WithParamInterface<VersionCase> {};

TEST_P(ControlVersionTest, FollowsFromTheHostVersion) {
  startIn(GetParam().host);
  EXPECT_EQ(CurrentREALControlVersion, GetParam().control);
  EXPECT_EQ(announced, std::vector{GetParam().control});
  EXPECT_EQ(NSUserDefaultsClass.base.version, GetParam().control);
}

INSTANTIATE_TEST_SUITE_P(Hosts, ControlVersionTest,
                         testing::Values(VersionCase{2025.01, 12}, VersionCase{2013.9, 12},
                                         VersionCase{2013.03, 12}, VersionCase{2013.02, 11},
                                         VersionCase{2013.0, 11}, VersionCase{2012.99, 10},
                                         VersionCase{2012.0, 10}, VersionCase{2011.99, 9},
                                         VersionCase{2011.04, 9}, VersionCase{0.0, 9},
                                         VersionCase{-1.0, 9},
                                         VersionCase{std::numeric_limits<double>::quiet_NaN(), 9}));

TEST_F(MainTest, AHostThatDoesNotTellItsVersionIsAnOldOne) {
  hostTellsVersion = false;
  REALPluginMain(resolve);
  EXPECT_EQ(rbversion, 0.0);
  EXPECT_EQ(announced, std::vector<std::int32_t>{9});
}

TEST_F(MainTest, AHostThatDoesNotTellItsVersionKeepsTheOneStored) {
  rbversion = 2012.5;
  hostTellsVersion = false;
  REALPluginMain(resolve);
  EXPECT_EQ(rbversion, 2012.5);
  EXPECT_EQ(announced, std::vector<std::int32_t>{10});
}

struct SizeCase {
  std::int32_t declared;
  std::int32_t registered;
};

class DataSizeTest : public MainTest, public testing::WithParamInterface<SizeCase> {};

TEST_P(DataSizeTest, IsRoundedUpToSixteenBytes) {
  NSUserDefaultsClass.base.dataSize = GetParam().declared;
  startIn(2013.03);
  EXPECT_EQ(NSUserDefaultsClass.base.dataSize, GetParam().registered);
}

TEST_P(DataSizeTest, IsRoundedUpOnOldHostsToo) {
  NSUserDefaultsClass.base.dataSize = GetParam().declared;
  startIn(2011.04);
  EXPECT_EQ(NSUserDefaultsClass.base.dataSize, GetParam().registered);
}

INSTANTIATE_TEST_SUITE_P(Sizes, DataSizeTest,
                         testing::Values(SizeCase{4, 16}, SizeCase{16, 16}, SizeCase{17, 32},
                                         SizeCase{0, 0}, SizeCase{15, 16}, SizeCase{32, 32},
                                         SizeCase{-1, -1}, SizeCase{-17, -17}));

TEST_F(MainTest, CurrentHostsGetTheDeclaredTables) {
  for (const double version : {2012.0, 2013.0, 2013.03}) {
    tests::makePluginFresh();
    startIn(version);
    const OlderClassRecord& record = NSUserDefaultsClass.base;
    EXPECT_EQ(record.methods, NSUserDefaultsMethods);
    EXPECT_EQ(record.methodCount, 43);
    EXPECT_EQ(record.sharedMethods, NSUserDefaultsSharedMethods);
    EXPECT_EQ(record.sharedMethodCount, 6);
  }
}

TEST_F(MainTest, OldHostsGetOlderTables) {
  startIn(2011.04);
  const OlderClassRecord& record = NSUserDefaultsClass.base;
  EXPECT_EQ(record.version, 9);
  EXPECT_NE(record.methods, NSUserDefaultsMethods);
  EXPECT_EQ(record.methodCount, 43);
  EXPECT_NE(record.sharedMethods, NSUserDefaultsSharedMethods);
  EXPECT_EQ(record.sharedMethodCount, 6);
  EXPECT_EQ(registered, std::vector{&NSUserDefaultsClass});
}

template <std::size_t Count>
void expectOlderRecords(const void* list, const REALmethodDefinition (&declared)[Count]) {
  const auto* const older = static_cast<const OlderMethodRecord*>(list);
  for (std::size_t i = 0; i < Count; ++i) {
    SCOPED_TRACE(declared[i].declaration);
    EXPECT_STREQ(older[i].declaration, declared[i].declaration);
    EXPECT_EQ(older[i].function, declared[i].function);
    EXPECT_EQ(older[i].setter, declared[i].setter);
    EXPECT_EQ(older[i].flags, 4);
  }
}

TEST_F(MainTest, OldHostsGetEveryRecordInOrder) {
  startIn(2011.04);
  const OlderClassRecord& record = NSUserDefaultsClass.base;
  expectOlderRecords(record.methods, NSUserDefaultsMethods);
  expectOlderRecords(record.sharedMethods, NSUserDefaultsSharedMethods);
  EXPECT_EQ(record.attributes, nullptr);
  EXPECT_EQ(record.properties, nullptr);
  EXPECT_EQ(record.events, nullptr);
  EXPECT_EQ(record.constants, nullptr);
  EXPECT_EQ(record.sharedProperties, nullptr);
}

using MainDeathTest = MainTest;

// The call goes nowhere, after the version has been read and before anything is registered.
TEST_F(MainDeathTest, AHostMustTakeTheVersion) {
  hostTakesVersions = false;
  const auto start = [] {
    std::signal(SIGSEGV, [](int) {
      for (const std::string& event : events) std::fprintf(stderr, "%s, ", event.c_str());
      std::_Exit(1);
    });
    REALPluginMain(resolve);
  };
  EXPECT_EXIT(start(), testing::ExitedWithCode(1),
              "^find RegisterPluginVersion, find REALGetRBVersion, tell version, $");
}

TEST_F(MainTest, AHostThatRegistersNoClassesIsLeftAlone) {
  hostRegistersClasses = false;
  REALPluginMain(resolve);
  startIn(2011.04);
  EXPECT_TRUE(registered.empty());
  EXPECT_EQ(announced, (std::vector<std::int32_t>{12, 9}));
}

}  // namespace
}  // namespace zel
