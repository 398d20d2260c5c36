// What the reference host makes of a plugin's start: versions and class records.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

using Lines = std::vector<std::string>;
using host::Host;
using host::RegisteredClass;

double askedVersion() { return entryPoint<double()>("REALGetRBVersion")(); }

TEST_F(HostTest, TellsItsVersion) {
  for (const double version : {2011.04, 2012.0, 2012.99, 2013.0, 2013.03, 2013.9, 2014.0}) {
    start({.version = version});
    EXPECT_EQ(askedVersion(), version);
  }
}

TEST_F(HostTest, MayHaveNoVersion) {
  start({.version = std::nullopt});
  EXPECT_EQ(Host::resolver()("REALGetRBVersion"), nullptr);
}

TEST_F(HostTest, RecordsTheAnnouncedVersion) {
  EXPECT_EQ(host->announcedVersion(), std::nullopt);
  load();
  EXPECT_EQ(host->announcedVersion(), 12);
}

TEST_F(HostTest, ReadsClassRecordsOfBothLayouts) {
  for (const std::int32_t version : {9, 10, 12}) {
    start({});
    SamplePlugin::current().announced = version;
    SamplePlugin::current().recorded = version;
    load();
    const RegisteredClass* const sample = host->findClass("SampleZEL");
    ASSERT_NE(sample, nullptr);
    EXPECT_EQ(sample->name, "SampleZEL");
    EXPECT_EQ(sample->superName, "");
    EXPECT_EQ(sample->version, version);
    EXPECT_EQ(sample->dataSize, 16);
    EXPECT_EQ(sample->flags, 4);
    ASSERT_EQ(sample->methods.size(), 20U);
    EXPECT_EQ(sample->methods[3].text, "count(key as string) as integer");
    EXPECT_EQ(sample->methods[3].declaration.name, "count");
    EXPECT_NE(sample->methods[3].setter, nullptr);
    EXPECT_EQ(sample->methods[3].flags, 4);
    EXPECT_EQ(sample->methods[19].text, "throw(text as string)");
    EXPECT_EQ(sample->methods[19].setter, nullptr);
    ASSERT_EQ(sample->sharedMethods.size(), 2U);
    EXPECT_EQ(sample->sharedMethods[1].text, "make as SampleZEL");
    EXPECT_EQ(SamplePlugin::current().record.base.systemUse, 24);
  }
}

TEST_F(HostTest, TakesACountWithoutAListAsNone) {
  load();
  SamplePlugin::current().record.base.name = "Bare";
  SamplePlugin::current().record.base.methods = nullptr;
  entryPoint<void(zel::REALclassDefinition*)>("PluginRegisterClass")(
      &SamplePlugin::current().record);
  ASSERT_NE(host->findClass("Bare"), nullptr);
  EXPECT_EQ(host->findClass("Bare")->methods.size(), 0U);
  EXPECT_EQ(host->findClass("Bare")->sharedMethods.size(), 2U);
}

TEST_F(HostTest, RefusesRecordsThatNoHostTakes) {
  SamplePlugin& plugin = SamplePlugin::current();
  const auto refusal = [this, &plugin](auto spoil) {
    plugin = SamplePlugin{};
    spoil(plugin);
    load();
    EXPECT_EQ(plugin.record.base.systemUse, 0);
    const Lines failures = takeFailures();
    return failures.size() == 1 ? failures[0] : std::to_string(failures.size()) + " failures";
  };
  EXPECT_EQ(refusal([](SamplePlugin& p) { p.dataSize = 4; }),
            "PluginRegisterClass refuses the class \"SampleZEL\": its data size isn't a multiple "
            "of 16: 4");
  EXPECT_EQ(refusal([](SamplePlugin& p) { p.announced = 11; }),
            "PluginRegisterClass refuses the class \"SampleZEL\": its version isn't the one that "
            "was announced");
  EXPECT_EQ(refusal([](SamplePlugin& p) { p.className = nullptr; }),
            "PluginRegisterClass refuses the class \"\": it has no name");
  EXPECT_EQ(refusal([](SamplePlugin& p) { p.superName = "Nobody"; }),
            "PluginRegisterClass refuses the class \"SampleZEL\": its super class \"Nobody\" is "
            "unknown");
  EXPECT_EQ(refusal([](SamplePlugin& p) { p.extraDeclaration = "f(a string)"; }),
            "PluginRegisterClass refuses the class \"SampleZEL\": declaration \"f(a string)\": "
            "expected \"as\" at column 5, found \"string\"");
  EXPECT_EQ(refusal([](SamplePlugin& p) { p.className = "RuntimeException"; }),
            "PluginRegisterClass refuses the class \"RuntimeException\": there is a class of that "
            "name");
  EXPECT_EQ(host->findClass("SampleZEL"), nullptr);
}

TEST_F(HostTest, IsOneAtATime) { EXPECT_THROW(Host another, std::logic_error); }

}  // namespace
}  // namespace tests
