// A bundle of the tests' own, run in this process.
#include "macho/loader/bundle.h"

#include <fstream>
#include <gtest/gtest.h>

#include "host/pool.h"
#include "macho/loader/passages.h"
#include "native/exceptions.h"
#include "tests/macho/loader/native_class.h"
#include "tests/support/folder.h"

namespace tests {
namespace {

using Lines = std::vector<std::string>;
using macho::Bundle;

const char* caseToRun;
Lines reported;
int cleanUps;

const char* getCase() { return caseToRun; }
void report(const char* line) { reported.emplace_back(line); }

using Callback = void (*)(void* context);
// Both ways across the border, with a clean-up of this system's in between.
void callBack(Callback callback, void* context) {
  struct CleanUp {
    ~CleanUp() { ++cleanUps; }
  } const cleanUp;
  struct Call {
    Callback callback;
    void* context;
  } call{callback, context};
  macho::enterBundle(
      [](void* raw) {
        const Call& inner = *static_cast<Call*>(raw);
        inner.callback(inner.context);
      },
      &call);
}

void* resolve(const char* name) {
  const std::string_view asked = name;
  if (asked == "case") return reinterpret_cast<void*>(getCase);
  if (asked == "report") return reinterpret_cast<void*>(report);
  return asked == "call" ? macho::outward(reinterpret_cast<void*>(callBack)) : nullptr;
}

class BundleTest : public testing::Test {
 protected:
  BundleTest() {
    defineLoaderSample();
    reported.clear();
    cleanUps = 0;
  }

  void run(const char* name) const {
    caseToRun = name;
    bundle_.call("REALPluginMain", resolve);
  }
  Lines linesOf(const char* name) const {
    run(name);
    return reported;
  }

 private:
  const host::Pool pool_;
  Bundle bundle_{ZEL_LOADER_SAMPLE};
};

TEST_F(BundleTest, AnUnknownCaseIsTold) {
  EXPECT_EQ(linesOf("no such case"), Lines{"there is no such case"});
}

TEST_F(BundleTest, InitialisersRun) { EXPECT_EQ(linesOf("initialisers"), Lines{"2 initialisers"}); }

TEST_F(BundleTest, PointersIntoTheImageAreAdjusted) {
  EXPECT_EQ(linesOf("table"), (Lines{"entry 1", "entry 2"}));
}

TEST_F(BundleTest, VariablesAreAsBuiltInEveryLoad) {
  EXPECT_EQ(linesOf("variables"), (Lines{"zeros 0", "counter 41"}));
  EXPECT_EQ(linesOf("variables"), (Lines{"zeros 0", "counter 41", "zeros 0", "counter 42"}));
  reported.clear();
  caseToRun = "variables";
  Bundle(ZEL_LOADER_SAMPLE).call("REALPluginMain", resolve);
  EXPECT_EQ(reported, (Lines{"zeros 0", "counter 41"}));
}

TEST_F(BundleTest, TheStackIsAligned) { EXPECT_EQ(linesOf("alignment"), Lines{"0 bytes off"}); }

TEST_F(BundleTest, TheCLibraryIsThere) {
  EXPECT_EQ(linesOf("library"),
            (Lines{"5000000000 1.250 text", "calloc 0", "strlen 31", "copied"}));
}

TEST_F(BundleTest, ConstantsAreFoundByName) {
  EXPECT_EQ(linesOf("constants"), (Lines{"NSGlobalDomain", "nothing", "nothing"}));
}

TEST_F(BundleTest, ClassesAreFoundByName) {
  EXPECT_EQ(linesOf("classes"),
            (Lines{"NSMutableString", "NSString", "no class", "a text", "no list"}));
}

TEST_F(BundleTest, NumbersTellTheirTypesAsOnMacOS) {
  EXPECT_EQ(linesOf("number types"), (Lines{"c", "i", "d"}));
}

TEST_F(BundleTest, TextsAreMadeAndRead) {
  EXPECT_EQ(linesOf("texts"), (Lines{"4 units", "caf\xC3\xA9"}));
}

TEST_F(BundleTest, NarrowNumbersAreExtended) {
  EXPECT_EQ(linesOf("narrow numbers"), (Lines{"char -128", "unsigned char 128", "bool 128",
                                              "short -384", "unsigned short 65152"}));
}

TEST_F(BundleTest, WideNumbersComeWhole) {
  EXPECT_EQ(linesOf("wide numbers"),
            (Lines{"int -123456", "long long 78187493530", "float -9", "double 98763"}));
}

TEST_F(BundleTest, SmallStructuresComeInRegisters) {
  EXPECT_EQ(linesOf("small structures"),
            (Lines{"one 7", "two 8009", "four 1000011", "location 12", "length 2147483648"}));
}

TEST_F(BundleTest, OtherStructuresComeWhereTheyAreWanted) {
  EXPECT_EQ(linesOf("large structures"), (Lines{"three abcdef", "after 22", "x 4", "height 8001"}));
}

TEST_F(BundleTest, MessagesToNilGiveNothing) {
  EXPECT_EQ(linesOf("nil"), (Lines{"int 0", "long long 0", "double 0", "a structure"}));
}

using BundleDeathTest = BundleTest;

TEST_F(BundleDeathTest, AMessageNeedsItsMessenger) {
  EXPECT_DEATH(run("float as integer"), "what single gives back isn't for this messenger");
  EXPECT_DEATH(run("double as integer"), "what real gives back isn't for this messenger");
  EXPECT_DEATH(run("integer as double"), "what integer gives back isn't for this messenger");
  EXPECT_DEATH(run("structure as double"), "what range gives back isn't for this messenger");
}

TEST_F(BundleTest, ManyArgumentsPass) {
  EXPECT_EQ(linesOf("arguments"), (Lines{"sum 1099511627989", "rect 30"}));
}

TEST_F(BundleTest, ExceptionsAreCaught) {
  EXPECT_EQ(linesOf("catch one"), (Lines{"NSException", "left", "nothing"}));
}

TEST_F(BundleTest, TheInnermostCatches) {
  EXPECT_EQ(linesOf("catch inside"), (Lines{"inside: caught", "outside: nothing"}));
}

TEST_F(BundleTest, ExceptionsGoOn) {
  EXPECT_EQ(linesOf("throw on"), (Lines{"cleaned up", "caught"}));
}

TEST_F(BundleTest, ExceptionsUnwindWhatLiesBetween) {
  EXPECT_EQ(linesOf("catch beyond the test"), Lines{"caught"});
  EXPECT_EQ(cleanUps, 2);
}

TEST_F(BundleTest, WhatIsCaughtDoesNotGoOn) {
  EXPECT_EQ(linesOf("catch before the test"), (Lines{"caught inside", "nothing"}));
  EXPECT_EQ(cleanUps, 1);
}

TEST_F(BundleTest, ExceptionsCanBeCaughtForEver) {
  EXPECT_EQ(linesOf("catch often"), Lines{"caught 20000"});
}

TEST_F(BundleTest, WhatNobodyCatchesLeavesTheBundle) {
  const zel::id left = zel::catching([this] { run("throw out"); });
  EXPECT_EQ(reported, Lines{"throwing"});
  ASSERT_NE(left, nullptr);
  EXPECT_STREQ(zel::object_getClassName(left), "NSException");
  EXPECT_EQ(linesOf("catch one"), (Lines{"throwing", "NSException", "left", "nothing"}));
}

// The methods stay with the class, so the bundle has to stay with the process.
const Bundle& givingBundle() {
  static const auto& bundle = *new Bundle(ZEL_LOADER_SAMPLE);
  return bundle;
}

TEST_F(BundleTest, MethodsThatItGivesWorkOnEitherSide) {
  EXPECT_TRUE(givingBundle().mustStay());
  caseToRun = "give methods";
  givingBundle().call("REALPluginMain", resolve);
  givingBundle().call("REALPluginMain", resolve);
  caseToRun = "use methods";
  givingBundle().call("REALPluginMain", resolve);
  EXPECT_EQ(reported, (Lines{"given", "there already", "twice half 7", "caught"}));
  zel::Class* const owner = zel::lookUpClass("LoaderSample");
  EXPECT_EQ((zel::send<double, "halfOf:">(owner, 9)), 4.5);
  EXPECT_NE(zel::catching([&] { zel::send<void, "raiseBack">(owner); }), nullptr);
}

TEST_F(BundleTest, FunctionsAreFoundByName) {
  const Bundle bundle(ZEL_LOADER_SAMPLE);
  EXPECT_NE(bundle.find("REALPluginMain"), nullptr);
  EXPECT_EQ(bundle.find("_REALPluginMain"), nullptr);
  EXPECT_EQ(bundle.find("PluginMain"), nullptr);
  EXPECT_THROW(bundle.call("PluginMain"), std::runtime_error);
}

std::string refusalOf(const std::filesystem::path& folder) {
  try {
    const Bundle bundle(folder);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

TEST(BundleRefusalTest, AFolderThatIsntThereIsTold) {
  EXPECT_EQ(refusalOf("/nowhere/none.bundle"),
            "/nowhere/none.bundle/Contents/MacOS/none: can't be read");
}

TEST(BundleRefusalTest, AFileThatIsNoBundleIsTold) {
  const TemporaryFolder temporary;
  const auto folder = temporary.path() / "text.bundle";
  const auto file = macho::executableOf(folder);
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file) << "This is some text and no bundle.";
  EXPECT_EQ(refusalOf(folder), file.native() + ": this is no Mach-O file for 32-bit x86");
}

TEST(BundleRefusalTest, ASlashAtTheEndDoesNotMatter) {
  EXPECT_EQ(macho::executableOf("a/b.bundle/"), "a/b.bundle/Contents/MacOS/b");
  EXPECT_EQ(macho::executableOf("a/b.bundle"), "a/b.bundle/Contents/MacOS/b");
}

}  // namespace
}  // namespace tests
