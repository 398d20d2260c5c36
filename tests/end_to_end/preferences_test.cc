// Preferences files as programs leave them: every one is read through the class, rebuilt of new
// host values entry by entry, stored as another domain, and then compared with the original by
// Foundation. What doesn't come back as it was stands at the end; docs/values.md says why.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <tuple>

#include "host/store/private_store.h"
#include "native/numbers.h"
#include "tests/end_to_end/default_zone.h"
#include "tests/end_to_end/end_to_end_test.h"
#include "tests/end_to_end/host_lines.h"
#include "tests/end_to_end/property_lists.h"

namespace tests {
namespace {

using namespace std::string_literals;
namespace fs = std::filesystem;
using zel::id;
using zel::send;

struct File {
  const char* name;
  bool binary;  // rewritten in the binary format before
  Lines seen;   // some of what the host sees
};

void PrintTo(const File& file, std::ostream* out) {
  *out << file.name << (file.binary ? " binary" : "");
}

// Local time is that of Kathmandu, 5:45 before UTC.
const Lines kEditor = {{"BackupSuffix", "\"\""},
                       {"CheckSpelling", "false"},
                       {"DefaultFont.Size", "Double 11.5"},
                       {"DefaultFont.Traits", "dictionary 0"},
                       {"FirstLaunch", "Date 2013-09-03 18:19:56"},
                       {"Header", "\"<a href=\\\"x\\\"> & 'more'\n\tsecond line\""},
                       {"RecentFiles.0.Bookmark", "MemoryBlock 626f6f6b00000000"},
                       {"RecentFiles.0.LastOpened", "Date 2001-01-01 05:45:00"},
                       {"RecentFiles.0.Selection", "list 2"},
                       {"RecentFiles.0.Selection.1", "Int32 1"},
                       {"RecentFiles.1.LastOpened", "Date 1970-01-01 05:29:59"},
                       {"RecentFiles.1.Selection", "list 0"},
                       {"WrapLines", "true"},
                       {"com.example.editor:panel/width", "Int32 -1"}};
const Lines kMail = {{"Accounts.0.Certificate", "MemoryBlock 308202"},
                     {"Accounts.0.Mailboxes.Inbox.Rules.0.Conditions.0.1", "\"\""},
                     {"Accounts.0.Mailboxes.Inbox.Rules.0.Conditions.1.1", "Int32 1048576"},
                     {"Accounts.0.Mailboxes.Inbox.Rules.0.Conditions.1.2", "true"},
                     {"Accounts.0.Mailboxes.Inbox.Rules.0.Weight", "Double -0.5"},
                     {"LastCheck", "Date 2024-03-01 05:44:59"},
                     {"Signature", "MemoryBlock 3c623e"}};
const Lines kInstrument = {{"Bytes.0", "Int32 -128"},
                           {"Bytes.1", "Int32 127"},
                           {"Bytes.2", "Int32 128"},
                           {"Bytes.3", "Int32 255"},
                           {"Bytes.4", "Int32 256"},
                           {"Int32 highest", "Int32 2147483647"},
                           {"Int32 lowest", "Int32 -2147483648"},
                           {"Int64 highest", "Int64 9223372036854775807"},
                           {"Int64 lowest", "Int64 -9223372036854775808"},
                           {"Over 32 bits", "Int64 4294967301"},
                           {"Real huge", "Double 1.7976931348623157e+308"},
                           {"Real whole", "Double 3"},
                           {"UInt32 highest", "Int64 4294967295"},
                           {"Zero", "Int32 0"}};
const Lines kLanguages = {{"composed", "\"caf\u00E9 \u00C5ngstr\u00F6m\""},
                          {"decomposed", "\"cafe\u0301 A\u030Angstro\u0308m\""},
                          {"direction", "\"a\u202Eb\u202Cc\""},
                          {"Русский.привет", "\"мир — «ёлки»\""},
                          {"中文.0", "\"你好，世界\""},
                          {"中文.1", "\"\u3000全角\u3000\""}};
const Lines kRecorder = {{"Armed", "true"},
                         {"Channels.0.Gain", "Double -6.5"},
                         {"Channels.1.Name", "\"Right\""},
                         {"Curve", "MemoryBlock 000102030405"},
                         {"Offset", "Int64 -9223372036854775808"},
                         {"Preset", "MemoryBlock 00ff10ef"},
                         {"Serial", "Int64 9223372036854775807"},
                         {"Started", "Date 2013-10-27 06:15:00"},
                         {"Title", "\"Gr\u00FC\u00DFe\""}};

// The archive in it is data like any other.
const Lines kTerminal = {{"Background.Blue Component", "Double 0.1"},
                         {"Background.Green Component", "Double 0.30000000000000004"},
                         {"Background.Red Component", "Double 0.8431372549019608"},
                         {"Cursor.Green Component", "Double 1.7976931348623157e+308"},
                         {"Cursor.Red Component", "Double 5e-324"},
                         {"Ones.0", "Int32 1"},
                         {"Ones.1", "true"},
                         {"Ones.2", "Double 1"},
                         {"Ones.4", "false"},
                         {"Ones.7.0", "Int32 1"},
                         {"Ones.8.0", "true"},
                         {"Ones.9.0", "Double 1"},
                         {"Profiles.19.Name", "\"Profile 19\""}};
const Lines kShortcuts = {{"NSUserKeyEquivalents.\x1B"
                           "File\x1BSave As\u2026",
                           "\"@$s\""},
                          {"NSUserKeyEquivalents.\x1BView\x1B\U0001F600", "\"\uF704\""},
                          {"composed", "\"\u00E9\u212B\""},
                          {"decomposed", "\"e\u0301A\u030A\""},
                          {"escapes", R"("x\\U0041y \\UD83D\\UDE00 \\n")"},
                          {"last", "\"\uFFFF\U0010FFFF\""},
                          {"marks", "\"\uFEFFa\""},
                          {"mood", "\"fine \U0001F600\""},
                          {"\U0001F600", "\"\U0001F600\""}};
const Lines kArchive = {{"$archiver", "\"NSKeyedArchiver\""},
                        {"$objects.1.$class.CF$UID", "Int32 3"},
                        {"$objects.1.NSSize", "Double 11"},
                        {"$top.root.CF$UID", "Int32 1"},
                        {"$version", "Int32 100000"}};

const File kFiles[] = {{"editor", false, kEditor},
                       {"editor", true, kEditor},
                       {"mail", false, kMail},
                       {"mail", true, kMail},
                       {"instrument", false, kInstrument},
                       {"languages", false, kLanguages},
                       {"languages", true, kLanguages},
                       {"recorder", false, kRecorder},
                       {"terminal", false, kTerminal},
                       {"shortcuts", false, kShortcuts},
                       {"archive", false, kArchive}};

// Passes what stands in one domain's file through the host into another's.
class PassageTest : public FamilyTest {
 protected:
  static constexpr const char* kOriginal = "com.example.original";
  static constexpr const char* kCopy = "com.example.copy";

  void SetUp() override {
    ASSERT_TRUE(zone_.isKnown());
    for (const char* const domain : {kOriginal, kCopy}) fs::remove(host::storedDomain(domain));
  }
  void TearDown() override {
    defaults_.reset();
    FamilyTest::TearDown();
    for (const char* const domain : {kOriginal, kCopy}) fs::remove(host::storedDomain(domain));
    readDefaultsAnew();
  }

  /// What a host of that version gets from the original's file.
  Value original(double version) {
    readDefaultsAnew();
    startHost({.version = version});
    defaults_ = standard();
    return ask(defaults_, "persistentDomainForName", {std::string(kOriginal)});
  }
  /// Stores it, made of new host objects, as the copy.
  Outcome storeCopy(const Value& domain) {
    Outcome outcome =
        host->call(defaults_, "setPersistentDomain", {rebuilt(domain), std::string(kCopy)});
    EXPECT_EQ(ask(defaults_, "synchronize"), Value(std::int8_t{1}));
    return outcome;
  }
  static id storedOriginal() { return propertyListIn(host::storedDomain(kOriginal)); }
  static id storedCopy() { return propertyListIn(host::storedDomain(kCopy)); }

 private:
  // The same value of new host objects.
  Value rebuilt(const Value& value) {
    const auto* const object = std::get_if<ObjectRef>(&value);
    if (object == nullptr || !*object) return value;
    const std::string literal = host->describe(value);
    if (literal.starts_with("{")) return rebuiltDictionary(*object);
    if (literal.starts_with("[")) return rebuiltList(*object);
    if (literal.starts_with("Date ")) return host->date(host->fieldsOf(*object));
    EXPECT_TRUE(literal.starts_with("MemoryBlock ")) << literal;
    return host->memoryBlock(host->bytesOf(*object));
  }
  ObjectRef rebuiltList(const ObjectRef& list) {
    Values elements = host->elements(list);
    std::transform(elements.begin(), elements.end(), elements.begin(),
                   [this](const Value& element) { return rebuilt(element); });
    return host->array(Host::kObjectElements, elements);
  }
  ObjectRef rebuiltDictionary(const ObjectRef& dictionary) {
    host::Entries entries = host->entries(dictionary);
    for (auto& [key, value] : entries) value = rebuilt(value);
    return host->dictionary(entries);
  }

  DefaultZone zone_{"Asia/Kathmandu"};
  ObjectRef defaults_;
};

class PreferencesTest : public PassageTest,
                        public testing::WithParamInterface<std::tuple<double, File>> {
 protected:
  // Puts the file where the original domain is kept.
  static void place(const File& file) {
    const fs::path source = fs::path(ZEL_PREFERENCES) / (file.name + ".plist"s);
    if (file.binary) {
      writeBinary(propertyListIn(source), host::storedDomain(kOriginal));
    } else {
      fs::copy_file(source, host::storedDomain(kOriginal));
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Hosts, PreferencesTest,
                         testing::Combine(testing::ValuesIn(amongThese({2011.04, 2013.9, 2014.0})),
                                          testing::ValuesIn(kFiles)));

TEST_P(PreferencesTest, PassThroughTheHost) {
  const auto& [version, file] = GetParam();
  place(file);
  const Value domain = original(version);
  const Lines lines = linesOf(*host, domain);
  for (const auto& [path, literal] : file.seen) {
    ASSERT_TRUE(lines.contains(path)) << path;
    EXPECT_EQ(lines.at(path), literal) << path;
  }
  EXPECT_EQ(storeCopy(domain).raised, std::nullopt);
  const id before = storedOriginal();
  const id after = storedCopy();
  EXPECT_EQ(differences(linesOf(before), linesOf(after)), std::vector<std::string>{});
  EXPECT_TRUE(areEqual(before, after));
}

// --- what only some files have

class OneValueTest : public PassageTest {
 protected:
  // Makes the original a domain of that one value.
  static void place(id value) {
    writeBinary(send<id, "dictionaryWithObject:forKey:">(zel::classNamed<"NSDictionary">(), value,
                                                         nativeText("key")),
                host::storedDomain(kOriginal));
  }
  static id listOf(id value) {
    return send<id, "arrayWithObject:">(zel::classNamed<"NSArray">(), value);
  }
  static id date(double seconds) {
    return send<id, "dateWithTimeIntervalSinceReferenceDate:">(zel::classNamed<"NSDate">(),
                                                               seconds);
  }
  // How the value changes on its way.
  std::vector<std::string> change(id value) {
    place(value);
    EXPECT_EQ(storeCopy(original(2014.0)).raised, std::nullopt);
    return differences(linesOf(storedOriginal()), linesOf(storedCopy()));
  }
  // Passes the original, which can't be stored again.
  void expectRefused(const std::string& seen) {
    const Value domain = original(2014.0);
    EXPECT_EQ(host->describe(domain), seen);
    testing::internal::CaptureStderr();
    const Outcome outcome = storeCopy(domain);
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(outcome.raised.value_or(Raised{}).className, "NSExceptionZEL");
    EXPECT_NE(log.find("A NSInvalidArgumentException: "), std::string::npos) << log;
    EXPECT_FALSE(fs::exists(host::storedDomain(kCopy)));
  }
};

TEST_F(OneValueTest, ADateLosesTheFractionOfItsSecond) {
  EXPECT_EQ(change(date(400000001.75)),
            std::vector<std::string>{"key: date 400000001.75 -> date 400000001"});
}

TEST_F(OneValueTest, ADateBefore1970LosesTheFractionOfItsSecond) {
  EXPECT_EQ(change(date(-2000000000.25)),
            std::vector<std::string>{"key: date -2000000000.25 -> date -2000000001"});
}

TEST_F(OneValueTest, ASingleStaysASingle) {
  const id single = send<id, "numberWithFloat:">(zel::classNamed<"NSNumber">(), 0.1F);
  place(single);
  const Value domain = original(2014.0);
  EXPECT_EQ(host->describe(domain), R"({"key": Single 0.1})");
  EXPECT_EQ(storeCopy(domain).raised, std::nullopt);
  const id copy = send<id, "objectForKey:">(storedCopy(), nativeText("key"));
  EXPECT_STREQ(zel::zelNumberType(copy), "f");
  EXPECT_TRUE(areEqual(copy, single));
}

TEST_F(OneValueTest, AnEmptyXmlDomainIsEmpty) {
  std::ofstream(host::storedDomain(kOriginal)) << "<?xml version=\"1.0\"?><plist><dict/></plist>";
  const Value domain = original(2014.0);
  EXPECT_EQ(host->describe(domain), "{}");
}

TEST_F(OneValueTest, AnEmptyBinaryDomainIsEmpty) {
  writeBinary(send<id, "dictionary">(zel::classNamed<"NSDictionary">()),
              host::storedDomain(kOriginal));
  const Value domain = original(2014.0);
  EXPECT_EQ(host->describe(domain), "{}");
  EXPECT_EQ(storeCopy(domain).raised, std::nullopt);
}

TEST_F(OneValueTest, EmptyDataInADictionaryCantBeStoredAgain) {
  place(send<id, "data">(zel::classNamed<"NSData">()));
  expectRefused(R"({"key": nil})");
}

TEST_F(OneValueTest, EmptyDataInAListCantBeStoredAgain) {
  place(listOf(send<id, "data">(zel::classNamed<"NSData">())));
  expectRefused(R"({"key": [nil]})");
}

TEST_F(OneValueTest, AHighUnsignedNumberInADictionaryCantBeStoredAgain) {
  std::ofstream(host::storedDomain(kOriginal)) << "{key = <*I9223372036854775813>;}";
  expectRefused(R"({"key": UInt64 5})");
}

TEST_F(OneValueTest, AHighUnsignedNumberInAListCantBeStoredAgain) {
  std::ofstream(host::storedDomain(kOriginal)) << "{key = (<*I9223372036854775813>);}";
  expectRefused(R"({"key": [UInt64 5]})");
}

// Integers of 16 bytes among others. Only they don't come back, and the file stays whole when
// another value in it is changed.
TEST_F(OneValueTest, HighUnsignedNumbersInABinaryFileStayInIt) {
  fs::copy_file(fs::path(ZEL_PREFERENCES) / "counters.plist", host::storedDomain(kOriginal));
  const Lines before = linesOf(storedOriginal());
  EXPECT_EQ(before, (Lines{{"", "dictionary 6"},
                           {"highest", "integer 18446744073709551615"},
                           {"lowest", "integer 9223372036854775808"},
                           {"name", "text \"counters\""},
                           {"other", "integer 9223372036854775813"},
                           {"signed", "integer 9223372036854775807"},
                           {"since", "date 399904496"}}));
  const Value seen = original(2014.0);
  EXPECT_EQ(linesOf(*host, seen), (Lines{{"", "dictionary 6"},
                                         {"highest", "UInt64 4294967295"},
                                         {"lowest", "UInt64 0"},
                                         {"name", "\"counters\""},
                                         {"other", "UInt64 5"},
                                         {"signed", "Int64 9223372036854775807"},
                                         {"since", "Date 2013-09-03 18:19:56"}}));
  const id standard = send<id, "standardUserDefaults">(zel::classNamed<"NSUserDefaults">());
  const id changed = zel::autoreleased(send<id, "mutableCopy">(storedOriginal()));
  send<void, "setObject:forKey:">(changed, nativeText("changed"), nativeText("name"));
  send<void, "setPersistentDomain:forName:">(standard, changed, nativeText(kOriginal));
  send<zel::BOOL, "synchronize">(standard);
  EXPECT_EQ(differences(before, linesOf(storedOriginal())),
            std::vector<std::string>{"name: text \"counters\" -> text \"changed\""});
}

TEST_F(OneValueTest, AListInAListStaysEmpty) {
  const id empty = send<id, "array">(zel::classNamed<"NSArray">());
  EXPECT_EQ(change(listOf(listOf(empty))), std::vector<std::string>{});
}

}  // namespace
}  // namespace tests
