// Values that are objects through the built plugin, in every host.
#include <filesystem>
#include <fstream>
#include <limits>

#include "tests/end_to_end/end_to_end_test.h"
#include "tests/support/folder.h"

namespace tests {
namespace {

using namespace std::string_literals;

class ObjectsTest : public DefaultsTest {
 protected:
  std::string get(const std::string& getter, const std::string& key = "object") {
    return host->describe(ask(defaults, getter, {key}));
  }
  void set(const std::string& setter, const Value& value, const std::string& key = "object") {
    EXPECT_EQ(ask(defaults, setter, {key, value}), Value());
  }
};

INSTANTIATE_TEST_SUITE_P(Hosts, ObjectsTest, testing::ValuesIn(amongThese(kHostVersions)));

TEST_P(ObjectsTest, Data) {
  set("setDataValue", host->memoryBlock("\x00\x01\xFE\xFF"s + "abc"));
  EXPECT_EQ(get("dataForKey"), "MemoryBlock 0001feff616263");
  set("setDataValue", host->memoryBlock(""), "removed");
  EXPECT_EQ(get("dataForKey", "removed"), "nil");
}

TEST_P(ObjectsTest, Variants) {
  const struct {
    Value value;
    const char* read;
  } rows[] = {
      {host->variant(std::int32_t{-7}), "Int32 -7"},
      {host->variant(std::int64_t{1} << 40), "Int64 1099511627776"},
      {host->variant(2.5), "Double 2.5"},
      {host->variant(0.5F), "Single 0.5"},
      {host->variant(std::int8_t{1}), "true"},
      {host->variant(std::int8_t{0}), "false"},
      {host->variant("Grüße 世界 🎈"s), "\"Grüße 世界 🎈\""},
      {host->date({2024, 2, 29, 23, 59, 58}), "Date 2024-02-29 23:59:58"},
      {host->memoryBlock("ab"), "MemoryBlock 6162"},
      {host->dictionary({{"a"s, host->dictionary({{"b"s, 0.5}})}}), R"({"a": {"b": Double 0.5}})"},
      {host->array(Host::kObjectElements, {std::int32_t{1}, "b"s}), R"([Int32 1, "b"])"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.read);
    set("setVariantValue", row.value);
    EXPECT_EQ(get("variantForKey"), row.read);
  }
}

TEST_P(ObjectsTest, NoVariantRemovesTheKey) {
  set("setVariantValue", host->variant("text"s));
  set("setVariantValue", ObjectRef());
  EXPECT_EQ(get("variantForKey"), "nil");
}

TEST_P(ObjectsTest, ListsOfStrings) {
  set("setStringArrayValue", host->array(Host::kStringElements, {"a"s, ""s, "Grüße"s}));
  EXPECT_EQ(get("stringArrayForKey"), R"(["a", "Grüße"])");
  set("setStringArrayValue", host->array(Host::kStringElements, {}));
  EXPECT_EQ(get("stringArrayForKey"), "[]");
  EXPECT_EQ(get("stringArrayForKey", "unset"), "[]");
}

TEST_P(ObjectsTest, ListsOfVariants) {
  set("setArrayValue",
      host->array(Host::kObjectElements, {std::int32_t{1}, "two"s, 3.5, host->memoryBlock("4")}));
  EXPECT_EQ(get("arrayForKey"), R"([Int32 1, "two", Double 3.5, MemoryBlock 34])");
  EXPECT_EQ(get("arrayForKey", "unset"), "[]");
}

TEST_P(ObjectsTest, AHostThatMakesNoArraysGetsNone) {
  set("setStringArrayValue", host->array(Host::kStringElements, {"a"s, "b"s}));
  host->hide("RuntimeArrayCreateSingleDimBoundedArray");
  host->clearRecords();
  EXPECT_EQ(get("stringArrayForKey"), "nil");
  EXPECT_EQ(get("arrayForKey"), "nil");
  EXPECT_EQ(host->describe(ask(defaults, "volatileDomainNames")), "nil");
  EXPECT_EQ(host->calls("RuntimeArrayDirectGetInsertProc"), 0);
}

TEST_P(ObjectsTest, AnUnconstructedObjectStoresNothing) {
  set("setStringValue", "before"s);
  const ObjectRef unconstructed = host->make(kClass);
  const struct {
    const char* setter;
    Value value;
  } rows[] = {{"setDataValue", host->memoryBlock("ab")},
              {"setVariantValue", host->variant(0.5)},
              {"setFileValue", host->folderItem("/usr")},
              {"setStringArrayValue", host->array(Host::kStringElements, {"a"s})},
              {"setDictionaryValue", host->dictionary({{"a"s, 0.5}})},
              {"setArrayValue", host->array(Host::kObjectElements, {0.5})}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.setter);
    EXPECT_EQ(ask(unconstructed, row.setter, {"object"s, row.value}), Value());
    EXPECT_EQ(get("stringForKey"), "\"before\"");
  }
}

class NoNumberTest : public ObjectsTest {};

// A host whose version is no number is none after 2013.9.
INSTANTIATE_TEST_SUITE_P(Hosts, NoNumberTest,
                         testing::Values(std::numeric_limits<double>::quiet_NaN()));

TEST_P(NoNumberTest, ListsAreReadInPlace) {
  EXPECT_EQ(host->announcedVersion(), 9);
  set("setStringArrayValue", host->array(Host::kStringElements, {"a"s, "b"s}));
  EXPECT_EQ(get("stringArrayForKey"), R"(["a", "b"])");
  EXPECT_EQ(host->calls("RuntimeDirectReadStringArray"), 0);
  set("setArrayValue", host->array(Host::kObjectElements, {std::int32_t{1}}));
  EXPECT_EQ(get("arrayForKey"), "[Int32 1]");
  EXPECT_EQ(host->calls("RuntimeDirectReadObjectArray"), 0);
}

TEST_P(ObjectsTest, TypedArrays) {
  const struct {
    std::int32_t code;
    Values elements;
    const char* read;
  } rows[] = {{4098, {std::int32_t{1}, std::int32_t{-2}}, "[Int32 1, Int32 -2]"},
              {4099, {std::int64_t{1} << 40}, "[Int64 1099511627776]"},
              {4100, {1.5F}, "[Single 1.5]"},
              {4101, {0.25}, "[Double 0.25]"},
              {4103, {host->date({2001, 1, 2, 3, 4, 5})}, "[Date 2001-01-02 03:04:05]"},
              {4104, {"a"s}, R"(["a"])"},
              {4107, {std::int8_t{1}, std::int8_t{0}}, "[true, false]"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.code);
    set("setVariantValue", host->array(row.code, row.elements));
    EXPECT_EQ(get("variantForKey"), row.read);
  }
}

TEST_P(ObjectsTest, AnEmptyTextInATypedArrayIsAnException) {
  testing::internal::CaptureStderr();
  const Outcome outcome =
      host->call(defaults, "setVariantValue", {"bad"s, host->array(4104, {"a"s, ""s})});
  const std::string log = testing::internal::GetCapturedStderr();
  ASSERT_TRUE(outcome.raised.has_value());
  EXPECT_EQ(outcome.raised->className, "NSExceptionZEL");
  EXPECT_NE(log.find("A NSInvalidArgumentException: "), std::string::npos) << log;
  EXPECT_EQ(get("variantForKey", "bad"), "nil");
}

TEST_P(ObjectsTest, Dictionaries) {
  const ObjectRef dictionary =
      host->dictionary({{"list"s, host->array(Host::kObjectElements,
                                              {std::int32_t{1}, ObjectRef(host->dictionary())})}});
  set("setDictionaryValue", dictionary);
  EXPECT_EQ(get("dictionaryForKey"), R"({"list": [Int32 1, {}]})");
  set("setDictionaryValue", host->dictionary());
  EXPECT_EQ(get("dictionaryForKey"), "{}");
  EXPECT_EQ(get("dictionaryForKey", "unset"), "nil");
}

TEST_P(ObjectsTest, AnotherKindOfValueIsNotRead) {
  set("setVariantValue", host->variant("text"s));
  EXPECT_EQ(get("dataForKey"), "nil");
  EXPECT_EQ(get("dictionaryForKey"), "nil");
  EXPECT_EQ(get("arrayForKey"), "[]");
  EXPECT_EQ(get("stringArrayForKey"), "[]");
}

TEST_P(ObjectsTest, AssignmentThroughTheGetter) {
  EXPECT_EQ(host->assign(defaults, "dataForKey", {"object"s}, host->memoryBlock("x")).raised,
            std::nullopt);
  EXPECT_EQ(get("dataForKey"), "MemoryBlock 78");
  EXPECT_EQ(host->assign(defaults, "variantForKey", {"object"s}, host->variant(0.5)).raised,
            std::nullopt);
  EXPECT_EQ(get("variantForKey"), "Double 0.5");
  EXPECT_EQ(host->assign(defaults, "dictionaryForKey", {"object"s}, host->dictionary({{"a"s, 0.5}}))
                .raised,
            std::nullopt);
  EXPECT_EQ(get("dictionaryForKey"), R"({"a": Double 0.5})");
}

// --- files

class FilesTest : public ObjectsTest {
 protected:
  std::string make(const std::string& name) {
    const std::filesystem::path file = folder_ / name;
    std::ofstream(file) << "content";
    return file.native();
  }
  [[nodiscard]] std::string missing(const std::string& name) const {
    return (folder_ / name).native();
  }

 private:
  TemporaryFolder temporary_;
  std::filesystem::path folder_ = temporary_.path();
};

INSTANTIATE_TEST_SUITE_P(Hosts, FilesTest,
                         testing::ValuesIn(amongThese({2011.04, 2013.0, 2014.0})));

TEST_P(FilesTest, FilesThatExist) {
  for (const std::string& name : {"plain.txt"s, "with space"s, "100%"s, "a#b?c;d"s,
                                  "Gr\xC3\xBC\xC3\x9F"
                                  "e"s,
                                  "世界 🎈"s}) {
    SCOPED_TRACE(name);
    const std::string path = make(name);
    set("setFileValue", host->folderItem(path));
    EXPECT_EQ(get("fileForKey"), "FolderItem " + path);
  }
}

TEST_P(FilesTest, AFileThatDoesNotExistYet) {
  set("setFileValue", host->folderItem(missing("new file")));
  EXPECT_EQ(get("fileForKey"), "FolderItem " + missing("new file"));
}

TEST_P(FilesTest, TheNameOfAFileThatDoesNotExistIsDecomposed) {
  set("setFileValue", host->folderItem(missing("caf\xC3\xA9")));
  EXPECT_EQ(get("fileForKey"), "FolderItem " + missing("cafe\xCC\x81"));
}

TEST_P(FilesTest, AFolderAndAVolumesRoot) {
  set("setFileValue", host->folderItem("/tmp"));
  EXPECT_EQ(get("fileForKey"), "FolderItem /tmp");
  set("setFileValue", host->folderItem("/"));
  EXPECT_EQ(get("fileForKey"), "FolderItem /");
}

TEST_P(FilesTest, AFileInAFolderThatIsGoneIsNoFile) {
  const std::string path = make("short lived");
  set("setFileValue", host->folderItem(path));
  std::filesystem::remove_all(std::filesystem::path(path).parent_path());
  EXPECT_EQ(get("fileForKey"), "nil");
}

TEST_P(FilesTest, AWebAddressIsNoFile) {
  set("setURLValue", "http://example.com/file.txt"s);
  EXPECT_EQ(get("fileForKey"), "nil");
}

TEST_P(FilesTest, AFilesAddressCanBeReadAsText) {
  const std::string path = make("address.txt");
  set("setFileValue", host->folderItem(path));
  const auto text = std::get<std::string>(ask(defaults, "URLForKey", {"object"s}));
  EXPECT_TRUE(text.starts_with("file://")) << text;
  EXPECT_TRUE(text.ends_with("/address.txt")) << text;
}

}  // namespace
}  // namespace tests
