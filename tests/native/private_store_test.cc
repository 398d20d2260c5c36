#include "host/store/private_store.h"

#include <fstream>
#include <iterator>
#include <sys/wait.h>

#include "tests/native/support.h"

namespace native_test {
namespace {

namespace fs = std::filesystem;

/// Runs the probe outside of every store, so that it makes one of its own.
std::string probeOutside(const std::string& command) {
  return outputOf("/usr/bin/env", {"env", "-u", "ZEL_PRIVATE_STORE", "-u", "GNUSTEP_CONFIG_FILE",
                                   ZEL_PROBE, command});
}

TEST(PrivateStoreTest, IsAFolderThatGoesAway) {
  fs::path folder;
  {
    const host::PrivateStore store;
    folder = store.folder();
    EXPECT_TRUE(fs::is_directory(folder));
    std::ofstream(folder / "Defaults" / "something.plist") << "{}";
    const host::PrivateStore other;
    EXPECT_NE(other.folder(), folder);
  }
  EXPECT_FALSE(fs::exists(folder));
}

TEST(PrivateStoreTest, IsForItsOwnerAlone) {
  const host::PrivateStore store;
  EXPECT_EQ(fs::status(store.folder()).permissions(), fs::perms::owner_all);
}

TEST(PrivateStoreTest, ConfigurationNamesTheFolder) {
  const host::PrivateStore store;
  std::ifstream in(store.configFile());
  const std::string text(std::istreambuf_iterator<char>(in), {});
  EXPECT_EQ(text, "GNUSTEP_USER_DEFAULTS_DIR=" + store.folder().native() +
                      "/Defaults\nGNUSTEP_USER_CONFIG_FILE=." + store.folder().filename().native() +
                      ".none\n");
}

TEST(PrivateStoreTest, TestsRunInOne) {
  const fs::path domain = host::storedDomain("some.domain");
  EXPECT_EQ(domain.filename(), "some.domain.plist");
  EXPECT_TRUE(fs::is_directory(domain.parent_path()));
  EXPECT_NE(std::getenv("GNUSTEP_CONFIG_FILE"), nullptr);
}

TEST(PrivateStoreTest, ProgramsStartedInsideShareIt) {
  EXPECT_EQ(outputOf(ZEL_PROBE, {"probe", "store"}),
            host::storedDomain("any").parent_path().native());
}

TEST(PrivateStoreTest, ProgramOutsideGetsANewOneThatGoesAway) {
  const fs::path first = probeOutside("store");
  const fs::path second = probeOutside("store");
  EXPECT_EQ(first.filename(), "Defaults");
  EXPECT_NE(first, second);
  EXPECT_NE(first, host::storedDomain("any").parent_path());
  EXPECT_FALSE(fs::exists(first.parent_path()));
  EXPECT_FALSE(fs::exists(second.parent_path()));
}

TEST(PrivateStoreTest, ResultOfTheProgramIsPassedOn) {
  const std::string shell = "env -u ZEL_PRIVATE_STORE '" ZEL_PROBE "' ";
  EXPECT_EQ(WEXITSTATUS(std::system((shell + "string key >/dev/null").c_str())), 0);
  EXPECT_EQ(WEXITSTATUS(std::system((shell + "nonsense").c_str())), 2);
  EXPECT_EQ(WEXITSTATUS(std::system((shell + "crash 2>/dev/null").c_str())), 128 + 9);
}

}  // namespace
}  // namespace native_test
