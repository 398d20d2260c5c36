// The store keeps what it says it keeps: damaged files, locks of others, names, several objects,
// threads and processes at once, and the end of a program.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "native/exceptions.h"
#include "tests/native/store_fixture.h"

namespace native_test {
namespace {

using namespace std::string_literals;
namespace fs = std::filesystem;

using zel::BOOL;
using zel::catching;
using zel::id;
using zel::send;

std::string contentsOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// A file lies where the folder with the locks should; until then nothing can be locked.
class NoLocks {
 public:
  explicit NoLocks(fs::path locks) : locks_(std::move(locks)) {
    fs::remove_all(locks_);
    std::ofstream(locks_) << "in the way";
  }
  NoLocks(const NoLocks&) = delete;
  NoLocks& operator=(const NoLocks&) = delete;
  ~NoLocks() { fs::remove(locks_); }

 private:
  fs::path locks_;
};

std::string occurrences(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++count;
  return std::to_string(count) + " in: " + text;
}

// A folder lies where the file should.
TEST_F(StoreTest, SynchronizeSaysWhenItCannotWrite) {
  fs::create_directory(file());
  setDomain(domain(), dictionary("kept", "value"));
  for (int i = 0; i < 2; ++i) {
    const auto [answer, log] = synchronizeLogged();
    EXPECT_FALSE(answer);
    EXPECT_TRUE(
        occurrences(log, file().native() + " can't be read: Is a directory.").starts_with("1 "))
        << log;
    EXPECT_EQ(inDomain(domain(), "kept"), "value");
  }
  fs::remove(file());
  EXPECT_EQ(synchronizeLogged(), std::pair(true, ""s));
  EXPECT_TRUE(fs::is_regular_file(file()));
}

TEST_F(StoreTest, AFolderThatCannotBeLockedIsReadAndNotWritten) {
  ASSERT_EQ(ask({"write", "1"}), "yes");
  {
    const NoLocks no_locks(lockFolder().parent_path());
    EXPECT_EQ(ask({"read"}), "1");
    StoreProcess writer(ZEL_STORE_PROBE, {domain(), "write", "2"});
    EXPECT_TRUE(writer.hasEnded(kAMoment));
    EXPECT_EQ(writer.output(), "no\n");
    EXPECT_NE(writer.log().find(file().native() + " can't be written: Not a directory."),
              std::string::npos)
        << writer.log();
  }
  EXPECT_EQ(ask({"read"}), "1");
  EXPECT_EQ(ask({"write", "2"}), "yes");
}

// Not even root can read this one.
TEST_F(StoreTest, AFileThatMustNotBeReadStays) {
  fs::create_symlink(file(), file());
  EXPECT_EQ(ask({"write", "1"}), "no");
  EXPECT_EQ(files(), std::vector{file()});
  EXPECT_TRUE(fs::is_symlink(file()));
}

class DamageTest : public StoreTest, public testing::WithParamInterface<std::string> {};

INSTANTIATE_TEST_SUITE_P(
    , DamageTest,
    testing::Values(""s, std::string(4096, '\0'), "no property list {"s, "( list )"s, "text"s,
                    "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>key0</key><string>1"s,
                    "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>"s, "bplist00"s,
                    "bplist00\xD1\x01\x02TkeyTcut"s, "\xFF\xFE\x00"s));

TEST_P(DamageTest, IsPutAside) {
  std::ofstream(file(), std::ios::binary) << GetParam();
  StoreProcess reader(ZEL_STORE_PROBE, {domain(), "read"});
  EXPECT_TRUE(reader.hasEnded(kAMoment));
  EXPECT_EQ(reader.output(), "none\n");
  const fs::path aside = file().native() + ".damaged-1";
  EXPECT_EQ(files(), std::vector{aside});
  EXPECT_TRUE(occurrences(reader.log(), "The defaults in " + file().native() +
                                            " are damaged. They are kept as " + aside.native() +
                                            ".")
                  .starts_with("1 "))
      << reader.log();
  EXPECT_EQ(ask({"write", "1"}), "yes");
  EXPECT_EQ(ask({"read"}), "1");
  EXPECT_EQ(contentsOf(aside), GetParam());
}

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

/// A file with so many dictionaries within each other, in the formats of text.
std::vector<std::string> nested(int levels) {
  const std::string xml = "<?xml version=\"1.0\"?><!-- <dict> --><plist version=\"1.0\">" +
                          repeated("<dict><key>a</key>", levels) + "<string>x</string>" +
                          repeated("</dict>", levels) + "</plist>";
  const std::string older = "/* { */ " + repeated("{\"{\\\"\" = a//b; a =\n", levels) + "x;" +
                            repeated("};", levels - 1) + "}";
  return {xml, older};
}

TEST_F(StoreTest, AFileThatNestsTooDeepIsPutAside) {
  constexpr int kDeepest = 257;
  int number = 0;
  for (const int levels : {kDeepest + 1, 200000}) {
    for (const std::string& text : nested(levels)) {
      std::ofstream(file(), std::ios::binary) << text;
      EXPECT_EQ(ask({"read"}), "none");
      EXPECT_EQ(contentsOf(file().native() + ".damaged-" + std::to_string(++number)), text);
    }
  }
  EXPECT_EQ(files().size(), 4U);
}

TEST_F(StoreTest, AFileThatNestsDeepIsRead) {
  for (const std::string& text : nested(257)) {
    std::ofstream(file(), std::ios::binary) << text;
    EXPECT_EQ(ask({"count", "a"}), "1") << text.substr(0, 80);
    EXPECT_EQ(files(), std::vector{file()});
  }
}

// Marks in texts, and elements beside each other.
TEST_F(StoreTest, AFileThatIsLongIsRead) {
  std::ofstream(file()) << "{" + repeated("key = \"((((\"; ", 1000) + "}";
  EXPECT_EQ(ask({"count", "key"}), "1");
  std::ofstream(file())
      << "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>key</key><array>" +
             repeated("<array/><true/><!-- ( --><string>{</string>", 1000) +
             "</array></dict></plist>";
  EXPECT_EQ(ask({"count", "key"}), "1");
  EXPECT_EQ(files(), std::vector{file()});
}

TEST_F(StoreTest, DamageIsNeverOverwritten) {
  for (const char* const damage : {"one", "two", "three"}) {
    std::ofstream(file()) << damage;
    EXPECT_EQ(ask({"write", "1"}), "yes");
  }
  EXPECT_EQ(contentsOf(file().native() + ".damaged-1"), "one");
  EXPECT_EQ(contentsOf(file().native() + ".damaged-2"), "two");
  EXPECT_EQ(contentsOf(file().native() + ".damaged-3"), "three");
}

TEST_F(StoreTest, DamageThatCannotBePutAsideStays) {
  std::ofstream(file()) << "damage";
  const NoLocks no_locks(lockFolder().parent_path());
  EXPECT_EQ(ask({"write", "1"}), "no");
  EXPECT_EQ(contentsOf(file()), "damage");
}

TEST_F(StoreTest, WhatAnObjectHoldsOutlivesDamage) {
  const id values = send<id, "mutableCopy">(dictionary("held", "value"));
  setDomain(domain(), values);
  ASSERT_TRUE(synchronize());
  std::ofstream(file()) << "damage";
  send<void, "setObject:forKey:">(values, string("value"), string("new"));
  setDomain(domain(), zel::autoreleased(values));
  const auto [answer, log] = synchronizeLogged();
  EXPECT_TRUE(answer);
  EXPECT_NE(log.find("damaged-1"), std::string::npos);
  EXPECT_EQ(inDomain(domain(), "held"), "value");
  EXPECT_EQ(inDomain(domain(), "new"), "value");
  EXPECT_EQ(contentsOf(file().native() + ".damaged-1"), "damage");
}

TEST_F(StoreTest, WhatTwoHaveAddedCanBeRemoved) {
  ASSERT_TRUE(synchronize());
  setDomain(domain(), dictionary("key0", "mine"));
  ASSERT_EQ(ask({"write", "1"}), "yes");
  {
    const NoLocks no_locks(lockFolder().parent_path());
    EXPECT_FALSE(synchronizeLogged().first);  // but it has read
  }
  EXPECT_EQ(inDomain(domain(), "key0"), "mine");
  EXPECT_EQ(inDomain(domain(), "key1"), "1");
  setDomain(domain(), send<id, "dictionary">(zel::classNamed<"NSDictionary">()));
  EXPECT_TRUE(synchronize());
  EXPECT_FALSE(fs::exists(file()));
}

TEST_F(StoreTest, FilesAreTheUsersAlone) {
  ASSERT_EQ(ask({"write", "1"}), "yes");
  EXPECT_EQ(fs::status(file()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(StoreTest, WhatIsSetIsKeptAtTheEndOfTheProgram) {
  int generation = 0;
  for (const char* const end : {"return", "exit", "thread", "drop"}) {
    const std::string value = std::to_string(++generation);
    StoreProcess program(ZEL_STORE_PROBE, {domain(), end, value});
    EXPECT_TRUE(program.hasEnded(kAMoment)) << end;
    EXPECT_EQ(program.result(), 0) << end;
    EXPECT_EQ(program.log(), "") << end;
    EXPECT_EQ(ask({"read"}), value) << end;
  }
  EXPECT_EQ(ask({"leave", "5"}), "");
  EXPECT_EQ(ask({"read"}), "4");
}

TEST_F(StoreTest, AChildOfTheProcessWritesWhatIsItsOwn) {
  EXPECT_EQ(ask({"fork", "1"}), "yes");
  EXPECT_EQ(ask({"read"}), "1");
  EXPECT_EQ(ask({"daemon", "2"}), "");
  EXPECT_EQ(ask({"read"}), "2");
}

TEST_F(StoreTest, TwoObjectsKeepTheFirstValuesOfADomain) {
  EXPECT_EQ(ask({"objects", domain() + ".suite"}), "yes yes");
  EXPECT_EQ(storeProbe(domain() + ".suite", {"count", "pair"}), "2");
}

TEST_F(StoreTest, ThreadsKeepAllValues) {
  StoreProcess program(ZEL_STORE_PROBE, {domain(), "threads", "25"});
  EXPECT_EQ(program.result(), 0) << program.log();
  EXPECT_EQ(program.output(), "yes\n") << program.log();
  EXPECT_EQ(ask({"count", "thread"}), "100");
}

// The folder's time is that of the kernel's last tick, which was before the file was read.
TEST_F(StoreTest, WhatOthersWriteIsSeenAtOnce) {
  const fs::path own = host::storedDomain(ownDomain());
  const fs::path other = own.native() + ".other";
  std::ofstream(other) << "{seenAtOnce = yes;}";
  ASSERT_TRUE(synchronize());
  const auto tick = fs::file_time_type::clock::now() - std::chrono::milliseconds(4);
  ASSERT_TRUE(synchronize());
  fs::rename(other, own);
  fs::last_write_time(own.parent_path(), tick);
  ASSERT_TRUE(synchronize());
  EXPECT_EQ(text(send<id, "stringForKey:">(standard(), string("seenAtOnce"))), "yes");
}

TEST_F(StoreTest, ADomainThatIsMadeAnewIsNotRemovedOnceMore) {
  setDomain(domain(), dictionary("a", "1"));
  ASSERT_TRUE(synchronize());
  send<void, "removePersistentDomainForName:">(standard(), string(domain().c_str()));
  EXPECT_FALSE(fs::exists(file()));
  ASSERT_EQ(ask({"write", "1"}), "yes");
  EXPECT_TRUE(synchronize());
  EXPECT_EQ(ask({"read"}), "1");
}

class BadNameTest : public StoreTest, public testing::WithParamInterface<std::u16string> {};

INSTANTIATE_TEST_SUITE_P(, BadNameTest,
                         testing::Values(u"../x", u"/x", u"a/b", u"x/", u"", u".", u"..",
                                         std::u16string(u"a\0b", 3)));

TEST_P(BadNameTest, IsRefused) {
  const zel::CFStringRef name = zel::autoreleased(zel::CFStringCreateWithCharacters(
      zel::kDefaultAllocator, reinterpret_cast<const zel::UniChar*>(GetParam().data()),
      static_cast<zel::CFIndex>(GetParam().size())));
  const auto nameOf = [](id exception) { return text(send<id, "name">(exception)); };
  EXPECT_EQ(nameOf(catching([&] {
              send<void, "setPersistentDomain:forName:">(standard(), dictionary("a", "1"), name);
            })),
            "NSInvalidArgumentException");
  EXPECT_EQ(
      nameOf(catching([&] { send<void, "removePersistentDomainForName:">(standard(), name); })),
      "NSInvalidArgumentException");
  EXPECT_TRUE(synchronize());
  EXPECT_FALSE(fs::exists(file().parent_path().parent_path() / "x.plist"));
}

TEST_F(StoreTest, NamesThatStayInTheFolderAreTaken) {
  for (const char* const name : {"...", ".hidden", "a.b", "with blank", "Größe", "~"}) {
    const std::string full = name;
    setDomain(full, dictionary("a", name));
    EXPECT_TRUE(synchronize());
    EXPECT_TRUE(fs::exists(host::storedDomain(full))) << name;
    send<void, "removePersistentDomainForName:">(standard(), string(name));
  }
}

}  // namespace
}  // namespace native_test
