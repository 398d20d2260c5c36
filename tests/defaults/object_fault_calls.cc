#include <utility>

#include "tests/defaults/fault_rows.h"

namespace tests {
namespace {

using namespace std::string_literals;
using zel::id;

// --- getters of objects

id mixedList(Kit& kit) {
  return kit.foundation.array({kit.foundation.number("i", 1), text(kit, kLongText),
                               kit.foundation.array({kit.foundation.boolean(true)})});
}

std::function<void(Kit&)> pathReplying(const char* path) {
  return replying("URLForKey:", [path](Kit& kit) {
    return foundation_double::Foundation::asObject(kit.foundation.fileUrl(path));
  });
}

Calls getterCalls() {
  const auto data = storing([](Kit& kit) { return kit.foundation.data("ab"); });
  const std::string lists = "[Int32 1, " + kLongLine + ", [true]]";
  return {
      withBlocks(getter("dataForKey", "dataForKey", data, "MemoryBlock 6162"), 1),
      getter("fileForKey", "fileForKey", pathReplying("/folder/file.txt"),
             "FolderItem /folder/file.txt"),
      getter("missingFileForKey", "fileForKey", pathReplying("/folder/caf\xC3\xA9"),
             "FolderItem /folder/cafe\xCC\x81"),
      getter("rootForKey", "fileForKey", pathReplying("/"), "FolderItem /"),
      getter("stringArrayForKey", "stringArrayForKey", storing([](Kit& kit) {
               return kit.foundation.array({text(kit, "a"), text(kit, ""), text(kit, kLongText)});
             }),
             R"(["a", "", )" + kLongLine + "]",
             {"[]", R"(["a"])", R"(["a", ""])", R"(["a", "", )" + kLongLine + "]"}),
      withBlocks(getter("dictionaryForKey", "dictionaryForKey", storing(mixedDictionary),
                        kMixedDictionary),
                 1),
      getter("arrayForKey", "arrayForKey", storing(mixedList), lists,
             {"[]", "[Int32 1]", "[Int32 1, " + kLongLine + "]", lists})};
}

// --- getters of anything

FaultCall variantGetter(const char* name, Make value, const std::string& gives) {
  return getter(name, "variantForKey", replying("objectForKey:", std::move(value)), gives);
}

Calls variantGetterCalls() {
  return {
      variantGetter(
          "variantOfNumber", [](Kit& kit) { return kit.foundation.number("i", 5); }, "Int32 5"),
      variantGetter(
          "variantOfText", [](Kit& kit) { return text(kit, kLongText); }, kLongLine),
      variantGetter(
          "variantOfDate", [](Kit& kit) { return kit.foundation.date(97445.5); },
          "Date 2001-01-02 03:04:05"),
      withBlocks(variantGetter(
                     "variantOfData", [](Kit& kit) { return kit.foundation.data("ab"); },
                     "MemoryBlock 6162"),
                 1),
      withBlocks(variantGetter("variantOfDictionary", mixedDictionary, kMixedDictionary), 1),
      variantGetter("variantOfList", mixedList, "[Int32 1, " + kLongLine + ", [true]]"),
      variantGetter(
          "variantOfAddress",
          [](Kit& kit) {
            return foundation_double::Foundation::asObject(
                kit.foundation.url("http://example.com/"));
          },
          "\"http://example.com/\""),
      variantGetter(
          "variantOfFile",
          [](Kit& kit) {
            return foundation_double::Foundation::asObject(
                kit.foundation.fileUrl("/folder/file.txt"));
          },
          "FolderItem /folder/file.txt"),
      variantGetter(
          "variantOfStructure",
          [](Kit& kit) {
            return kit.foundation.value(zel::NSRange{1, 2});
          },
          "NSRangeZEL"),
      variantGetter(
          "variantOfTime", [](Kit& kit) { return kit.foundation.value("{?=qll}"); },
          "QTKitTimeZEL"),
      variantGetter(
          "variantOfObject", [](Kit& kit) { return kit.foundation.object("NSColor"); },
          "NSColorZEL"),
      variantGetter(
          "variantOfWrapper",
          [](Kit& kit) {
            return zel::send<id, "wrap:">(zel::lookUpClass("ZELREALobjectWrapper"),
                                          kit.host.memoryBlock("ab").handle());
          },
          "MemoryBlock 6162"),
  };
}

// --- setters of objects

FaultCall variantSetter(const char* name, std::function<Value(Kit&)> value,
                        const std::string& with) {
  return setter(name, "setVariantValue", std::move(value), "variantForKey", "nil", with);
}

// For objects that no store keeps: what arrives there is described.
FaultCall describedSetter(const char* name, std::function<Value(Kit&)> value,
                          const std::string& handed) {
  FaultCall call = variantSetter(name, std::move(value), handed);
  call.before = [](Kit& kit) {
    replying("objectForKey:", [](Kit&) { return nullptr; })(kit);
    kit.foundation.addMethod(
        "NSUserDefaults", "setObject:forKey:", [](id, zel::SEL, id handedOn, zel::CFStringRef) {
          auto& foundation = foundation_double::Foundation::shared();
          const std::string literal = foundation.describe(handedOn);
          replied = foundation_double::Foundation::asObject(foundation.string(literal));
        });
  };
  return call;
}

Calls setterCalls() {
  return {setter(
              "setDataValue", "setDataValue", [](Kit& kit) { return kit.host.memoryBlock("ab"); },
              "dataForKey", "nil", "MemoryBlock 6162"),
          setter(
              "setFileValue", "setFileValue",
              [](Kit& kit) { return kit.host.folderItem("/folder/file.txt"); }, "fileForKey", "nil",
              "FolderItem /folder/file.txt"),
          setter(
              "setMissingFileValue", "setFileValue",
              [](Kit& kit) { return kit.host.folderItem("/folder/caf\xC3\xA9"); }, "fileForKey",
              "nil", "FolderItem /folder/cafe\xCC\x81"),
          setter(
              "setStringArrayValue", "setStringArrayValue",
              [](Kit& kit) {
                return kit.host.array(Host::kStringElements, {"a"s, ""s, kLongText});
              },
              "stringArrayForKey", "[]", R"(["a", )" + kLongLine + "]"),
          setter("setDictionaryValue", "setDictionaryValue", hostDictionary, "dictionaryForKey",
                 "nil", kStoredDictionary),
          setter(
              "setArrayValue", "setArrayValue",
              [](Kit& kit) {
                return kit.host.array(
                    Host::kObjectElements,
                    {std::int32_t{1}, std::monostate{}, kLongText, kit.host.array(4104, {"b"s})});
              },
              "arrayForKey", "[]", "[Int32 1, " + kLongLine + R"(, ["b"]])")};
}

Calls variantSetterCalls() {
  const auto scalar = [](const Value& value) {
    return [value](Kit& kit) -> Value { return kit.host.variant(value); };
  };
  const auto array = [](std::int32_t code, const Value& element) {
    return [code, element](Kit& kit) -> Value { return kit.host.array(code, {element}); };
  };
  const auto date = [](Kit& kit) { return kit.host.date({2001, 1, 2, 3, 4, 5}); };
  return {
      variantSetter("setInt32Variant", scalar(std::int32_t{5}), "Int32 5"),
      variantSetter("setInt64Variant", scalar(std::int64_t{6}), "Int64 6"),
      variantSetter("setSingleVariant", scalar(0.5F), "Single 0.5"),
      variantSetter("setDoubleVariant", scalar(2.5), "Double 2.5"),
      variantSetter("setBooleanVariant", scalar(std::int8_t{1}), "true"),
      variantSetter("setStringVariant", scalar(kLongText), kLongLine),
      variantSetter("setEmptyVariant", scalar(""s), "\"\""),
      variantSetter("setDateVariant", date, "Date 2001-01-02 03:04:05"),
      variantSetter("setInt32Array", array(4098, std::int32_t{5}), "[Int32 5]"),
      variantSetter("setInt64Array", array(4099, std::int64_t{6}), "[Int64 6]"),
      variantSetter("setSingleArray", array(4100, 0.5F), "[Single 0.5]"),
      variantSetter("setDoubleArray", array(4101, 2.5), "[Double 2.5]"),
      variantSetter(
          "setDateArray", [date](Kit& kit) -> Value { return kit.host.array(4103, {date(kit)}); },
          "[Date 2001-01-02 03:04:05]"),
      variantSetter("setStringArray", array(4104, kLongText), "[" + kLongLine + "]"),
      variantSetter("setObjectArray", array(4105, "b"s), R"(["b"])"),
      variantSetter("setBooleanArray", array(4107, std::int8_t{1}), "[true]"),
      variantSetter(
          "setBlock", [](Kit& kit) { return kit.host.memoryBlock("ab"); }, "MemoryBlock 6162"),
      variantSetter("setDictionary", hostDictionary, kStoredDictionary),
      variantSetter(
          "setWrapped",
          [](Kit& kit) { return kit.family.objectOf("NSColorZEL", text(kit, "red")); }, "\"red\""),
      variantSetter(
          "setCoreFoundation",
          [](Kit& kit) { return kit.family.coreFoundationObject("CFStringZEL", text(kit, "cf")); },
          "\"cf\""),
      describedSetter(
          "setFile", [](Kit& kit) { return kit.host.folderItem("/folder/file.txt"); },
          "\"url(\\\"file:///folder/file.txt\\\")\""),
      describedSetter(
          "setStructure", [](Kit& kit) { return kit.host.make("NSRectZEL"); },
          "\"rect(0, 0, 0, 0)\""),
      describedSetter(
          "setTime", [](Kit& kit) { return kit.host.make("CMTimeZEL"); }, "\"FamilyCMTime\""),
      describedSetter(
          "setUnknown", [](Kit& kit) { return kit.host.make("Unknown"); },
          "\"ZELREALobjectWrapper\"")};
}

}  // namespace

Calls objectCalls() {
  return joined({getterCalls(), variantGetterCalls(), setterCalls(), variantSetterCalls()});
}

}  // namespace tests
