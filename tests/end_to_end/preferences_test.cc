// Preferences files as programs leave them: every one is read through the class, rebuilt of new
// host values entry by entry, stored as another domain, and then compared with the original by
// Foundation. What may differ stands beside each file; docs/values.md says why.
#include <algorithm>
#include <filesystem>
#include <tuple>

#include "testkit/store/private_store.h"
#include "tests/end_to_end/default_zone.h"
#include "tests/end_to_end/end_to_end_test.h"
#include "tests/end_to_end/property_lists.h"

namespace tests {
namespace {

using namespace std::string_literals;
namespace fs = std::filesystem;
using zel::id;
using zel::send;

struct File {
  const char* name;
  bool binary;                           // rewritten in the binary format before
  std::vector<std::string> differences;  // between the original and what has passed
};

void PrintTo(const File& file, std::ostream* out) {
  *out << file.name << (file.binary ? " binary" : "");
}

const File kFiles[] = {
    {"editor", false, {}},
    {"editor", true, {}},
    {"mail", false, {"Signature: data  -> text \"<null>\""}},
    {"mail", true, {"Signature: data  -> text \"<null>\""}},
    {"instrument",
     false,
     {"UInt64 highest: integer 9223372036854775807 -> text \"<null>\"",
      "UInt64 lowest over Int64: integer 9223372036854775807 -> text \"<null>\""}},
    {"languages", false, {}},
    {"languages", true, {}},
    {"recorder",
     false,
     {"Serial: integer 9223372036854775813 -> text \"<null>\"",
      "SerialHighest: integer 18446744073709551615 -> text \"<null>\""}},
};

class PreferencesTest : public FamilyTest,
                        public testing::WithParamInterface<std::tuple<double, File>> {
 protected:
  static constexpr const char* kOriginal = "com.example.original";
  static constexpr const char* kCopy = "com.example.copy";

  void SetUp() override {
    ASSERT_TRUE(zone.isKnown());
    place(std::get<File>(GetParam()));
    startHost({.version = std::get<double>(GetParam())});
    defaults = standard();
  }
  void TearDown() override {
    for (const char* const domain : {kOriginal, kCopy})
      ask(defaults, "removePersistentDomainForName", {std::string(domain)});
    EXPECT_EQ(ask(defaults, "synchronize"), Value(std::int8_t{1}));
    defaults.reset();
    FamilyTest::TearDown();
  }

  // Puts the file where the original domain is kept. Foundation looks for it anew afterwards.
  static void place(const File& file) {
    const fs::path source = fs::path(ZEL_PREFERENCES) / (file.name + ".plist"s);
    if (file.binary) {
      writeBinary(propertyListIn(source), testkit::storedDomain(kOriginal));
    } else {
      fs::copy_file(source, testkit::storedDomain(kOriginal));
    }
    send<void, "resetStandardUserDefaults">(zel::classNamed<"NSUserDefaults">());
  }

  // The same value of new host objects.
  Value rebuilt(const Value& value) {
    const std::string literal = host->describe(value);
    const auto* const object = std::get_if<ObjectRef>(&value);
    if (object == nullptr || !*object) return value;
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
    testkit::Entries entries = host->entries(dictionary);
    for (auto& [key, value] : entries) value = rebuilt(value);
    return host->dictionary(entries);
  }

  DefaultZone zone{"Asia/Kathmandu"};
  ObjectRef defaults;
};

INSTANTIATE_TEST_SUITE_P(Hosts, PreferencesTest,
                         testing::Combine(testing::Values(2011.04, 2013.9, 2014.0),
                                          testing::ValuesIn(kFiles)));

TEST_P(PreferencesTest, PassThroughTheHost) {
  const Value original = ask(defaults, "persistentDomainForName", {std::string(kOriginal)});
  ASSERT_TRUE(host->describe(original).starts_with("{\""));
  ask(defaults, "setPersistentDomain", {rebuilt(original), std::string(kCopy)});
  EXPECT_EQ(ask(defaults, "synchronize"), Value(std::int8_t{1}));

  const id before = propertyListIn(testkit::storedDomain(kOriginal));
  const id after = propertyListIn(testkit::storedDomain(kCopy));
  const std::vector<std::string>& expected = std::get<File>(GetParam()).differences;
  EXPECT_EQ(differences(linesOf(before), linesOf(after)), expected);
  EXPECT_EQ(areEqual(before, after), expected.empty());
}

}  // namespace
}  // namespace tests
