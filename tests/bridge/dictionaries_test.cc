// Dictionaries across the border, and lists of strings.
#include "bridge/dictionaries.h"

#include <algorithm>

#include "bridge/native_to_variant.h"
#include "native/exceptions.h"
#include "tests/support/intercept.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

class DictionariesTest : public PluginTest {
 protected:
  std::string toHost(id dictionary) {
    return host->describe(
        ObjectRef::adopt(NSDictionaryRB(reinterpret_cast<CFDictionaryRef>(dictionary))));
  }
  id toNativeObject(const ObjectRef& dictionary) {
    return Foundation::asObject(NewNSDictionary(dictionary.as<REALdictionary>()));
  }
  std::string toNative(const ObjectRef& dictionary) {
    return foundation.describe(toNativeObject(dictionary));
  }
  id text(const char* utf8) { return Foundation::asObject(foundation.string(utf8)); }
  id one() { return foundation.number("i", 1); }
};

// --- native to host

TEST_F(DictionariesTest, ANativeDictionaryBecomesANewHostOne) {
  EXPECT_EQ(toHost(foundation.dictionary({{"a"s, one()}, {"b"s, text("two")}})),
            R"({"a": Int32 1, "b": "two"})");
}

TEST_F(DictionariesTest, NestedDictionariesAndListsGoAlong) {
  const id inner = foundation.dictionary({{"x"s, foundation.boolean(true)}});
  const id list = foundation.array({inner, foundation.array({})});
  EXPECT_EQ(toHost(foundation.dictionary({{"list"s, list}, {"inner"s, inner}})),
            R"({"list": [{"x": true}, []], "inner": {"x": true}})");
}

TEST_F(DictionariesTest, AnEmptyOneBecomesEmptyAndNilNothing) {
  EXPECT_EQ(toHost(foundation.dictionary(std::vector<std::pair<id, id>>{})), "{}");
  EXPECT_EQ(toHost(nullptr), "nil");
}

TEST_F(DictionariesTest, AHostThatMakesNoDictionariesGetsNothing) {
  host->answerNull("PluginNewInstance", 1);
  EXPECT_EQ(toHost(foundation.dictionary({{"a"s, one()}})), "nil");
  host->hide("PluginNewInstance");
}

TEST_F(DictionariesTest, KeysAndValuesThatBecomeNothingAreHandedOnAsTheyAre) {
  EXPECT_EQ(toHost(foundation.dictionary(std::vector<std::pair<id, id>>{
                {foundation.null(), one()}, {text("b"), foundation.null()}})),
            R"({nil: Int32 1, "b": nil})");
}

TEST_F(DictionariesTest, ADictionaryWithoutItsSetterStaysEmpty) {
  host->hide("Dictionary.SetValue");
  EXPECT_EQ(toHost(foundation.dictionary({{"a"s, one()}})), "{}");
}

TEST_F(DictionariesTest, TheHalfMadeDictionaryIsGivenBackWhenAnExceptionPasses) {
  const id dictionary = foundation.dictionary({{"a"s, one()}, {"b"s, one()}});
  constexpr long kMessages = 12;
  for (long n = 1; n <= kMessages; ++n) {
    SCOPED_TRACE(n);
    KnownKinds = {};  // so that each object is asked what it is
    foundation.throwAtMessage(n);
    EXPECT_NE(catching([&] { toHost(dictionary); }), nullptr);
    EXPECT_EQ(host->unbalanced(), "");
  }
}

// What a dictionary has been asked for.
int asked;
id firstValue;

TEST_F(DictionariesTest, TheHalfMadeDictionaryIsGivenBackWhenAValueRaises) {
  asked = 0;
  firstValue = one();
  foundation.addMethod("NSDictionary", "objectForKey:", [](id, SEL, id) -> id {
    if (++asked == 1) return firstValue;
    objc_exception_throw(foundation_double::Foundation::shared().exception("Gone", "No value."));
  });
  const id dictionary = foundation.dictionary({{"a"s, firstValue}, {"b"s, firstValue}});
  EXPECT_NE(catching([&] { toHost(dictionary); }), nullptr);
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(host->calls("Dictionary.SetValue"), 1);
  EXPECT_EQ(host->unbalanced(), "");
}

TEST_F(DictionariesTest, AnEntryIsMadeInAFixedOrder) {
  const id dictionary = foundation.dictionary({{"a"s, one()}});
  host->clearRecords();
  EXPECT_EQ(toHost(dictionary), R"({"a": Int32 1})");
  EXPECT_EQ(host->sequence(),
            (Lines{"PluginNewInstance", "REALBuildString", "REALSetStringEncoding",
                   "StringToVariant", "REALUnlockString", "Int32ToVariant", "REALLoadObjectMethod",
                   "REALLoadObjectMethod", "REALLoadObjectMethod", "Dictionary.SetValue",
                   "REALUnlockObject", "REALUnlockObject"}));
}

// The containers' methods, each of which is looked up once.
TEST_F(DictionariesTest, TheKeysAreWalkedInTheirOrder) {
  const id dictionary = foundation.dictionary({{"b"s, foundation.null()}, {"a"s, one()}});
  foundation.clearRecords();
  EXPECT_EQ(toHost(dictionary), R"({"b": nil, "a": Int32 1})");
  Lines walked;
  for (const std::string& message : foundation.messages()) {
    const bool ofAContainer = message.find("Dictionary ") != std::string::npos ||
                              message.find("Array ") != std::string::npos;
    if (ofAContainer) walked.push_back(message);
  }
  EXPECT_EQ(walked, (Lines{"-[NSDictionary allKeys]", "-[NSArray count]",
                           "-[NSArray objectAtIndex:]", "-[NSDictionary objectForKey:]"}));
}

TEST_F(DictionariesTest, ADictionaryWithoutAListOfKeysIsEmpty) {
  foundation.addMethod("NSDictionary", "allKeys", [](id, SEL) -> id { return nullptr; });
  EXPECT_EQ(toHost(foundation.dictionary({{"a"s, one()}})), "{}");
  EXPECT_EQ(host->calls("REALLoadObjectMethod"), 0);
}

TEST_F(DictionariesTest, WithoutAnyMethodsADictionaryStaysEmpty) {
  host->hide("REALLoadObjectMethod");
  EXPECT_EQ(toHost(foundation.dictionary({{"a"s, one()}})), "{}");
}

// --- host to native

TEST_F(DictionariesTest, AHostDictionaryBecomesAMutableNativeOne) {
  const ObjectRef dictionary =
      host->dictionary({{"a"s, std::int32_t{1}}, {"b"s, host->dictionary({{"c"s, 0.5}})}});
  const id native = toNativeObject(dictionary);
  EXPECT_EQ(foundation.describe(native), R"({"a" = 1, "b" = {"c" = 0.5}})");
  EXPECT_TRUE(isKindOf<"NSMutableDictionary">(native));
  EXPECT_EQ(foundation.capacity(native), std::optional<NSUInteger>(2));
}

TEST_F(DictionariesTest, AnEmptyHostDictionaryBecomesAnImmutableOne) {
  const id native = toNativeObject(host->dictionary());
  EXPECT_EQ(foundation.describe(native), "{}");
  EXPECT_FALSE(isKindOf<"NSMutableDictionary">(native));
  EXPECT_EQ(NewNSDictionary(nullptr), nullptr);
}

TEST_F(DictionariesTest, ACountThatCannotBeReadCountsAsNone) {
  const ObjectRef dictionary = host->dictionary({{"a"s, std::int32_t{1}}});
  host->hide("REALGetPropValueInt");
  EXPECT_EQ(toNative(dictionary), "{}");
}

TEST_F(DictionariesTest, ACountThatIsRefusedCountsAsNoneWhateverWasWritten) {
  intercept("REALGetPropValueInt", [](REALobject, const char*, std::int32_t* value) {
    *value = 1;
    return REALboolean{0};
  });
  const id native = toNativeObject(host->dictionary({{"a"s, std::int32_t{1}}}));
  EXPECT_EQ(foundation.describe(native), "{}");
  EXPECT_FALSE(isKindOf<"NSMutableDictionary">(native));
}

TEST_F(DictionariesTest, WhatCannotBeConvertedBecomesNSNull) {
  const ObjectRef nothing = host->variant(std::monostate{});
  EXPECT_EQ(toNative(host->dictionary({{"a"s, nothing}, {"b"s, std::monostate{}}})),
            R"({"a" = null, "b" = null})");
  EXPECT_EQ(toNative(host->dictionary({{nothing, std::int32_t{1}}})), "{null = 1}");
}

TEST_F(DictionariesTest, AnEntryWhoseKeyIsNullIsLeftOut) {
  EXPECT_EQ(toNative(host->dictionary({{std::monostate{}, std::int32_t{1}}, {"b"s, 2.5}})),
            R"({"b" = 2.5})");
}

TEST_F(DictionariesTest, TheGetterIsCalledForANullKeyToo) {
  const ObjectRef dictionary = host->dictionary({{std::monostate{}, std::int32_t{1}}});
  host->clearRecords();
  EXPECT_EQ(toNative(dictionary), "{}");
  EXPECT_EQ(host->calls("Dictionary.Value"), 1);
}

TEST_F(DictionariesTest, ALaterEntryOfAnEqualKeyReplacesTheEarlierOne) {
  // Different keys to the host, one and the same to Foundation.
  const ObjectRef dictionary = host->dictionary(
      {{host->variant(std::monostate{}), std::int32_t{1}}, {host->memoryBlock(""), 2.5}});
  EXPECT_EQ(toNative(dictionary), "{null = 2.5}");
}

TEST_F(DictionariesTest, WithoutItsMethodsADictionaryGivesNoEntries) {
  const ObjectRef dictionary = host->dictionary({{"a"s, std::int32_t{1}}});
  host->hide("REALLoadObjectMethod");
  EXPECT_EQ(toNative(dictionary), "{}");
}

TEST_F(DictionariesTest, WithoutItsGetterValuesBecomeNSNull) {
  host->hide("Dictionary.Value");
  EXPECT_EQ(toNative(host->dictionary({{"a"s, std::int32_t{1}}})), R"({"a" = null})");
}

TEST_F(DictionariesTest, WithoutItsKeysADictionaryGivesNoEntries) {
  const ObjectRef dictionary = host->dictionary({{"a"s, std::int32_t{1}}});
  host->hide("Dictionary.Key");
  host->answerNull("Dictionary.Value");
  EXPECT_EQ(toNative(dictionary), "{}");
  EXPECT_EQ(host->calls("Dictionary.Value"), 1);  // for the null key
}

TEST_F(DictionariesTest, ACountBelowOneCountsAsNone) {
  const ObjectRef dictionary = host->dictionary({{"a"s, std::int32_t{1}}});
  host->setProperty(dictionary, "Count", std::int32_t{-1});
  const id native = toNativeObject(dictionary);
  EXPECT_EQ(foundation.describe(native), "{}");
  EXPECT_FALSE(isKindOf<"NSMutableDictionary">(native));
}

TEST_F(DictionariesTest, ANativeDictionaryThatCannotBeMadeIsNil) {
  foundation.addClassMethod("NSMutableDictionary", "dictionaryWithCapacity:",
                            [](id, SEL, NSUInteger) -> id { return nullptr; });
  EXPECT_EQ(toNative(host->dictionary({{"a"s, std::int32_t{1}}})), "nil");
  EXPECT_EQ(host->calls("REALLoadObjectMethod"), 0);
}

TEST_F(DictionariesTest, AnEntryIsReadInAFixedOrder) {
  const ObjectRef dictionary = host->dictionary({{std::int64_t{1}, std::int32_t{2}}});
  host->clearRecords();
  EXPECT_EQ(toNative(dictionary), "{1 = 2}");
  EXPECT_EQ(host->sequence(),
            (Lines{"REALGetPropValueInt", "REALLoadObjectMethod", "REALLoadObjectMethod",
                   "REALLoadObjectMethod", "Dictionary.Key", "Dictionary.Value",
                   "REALLoadGlobalMethod", "VarType", "VariantToInt64", "VarType", "VariantToInt32",
                   "REALUnlockObject", "REALUnlockObject"}));
}

TEST_F(DictionariesTest, NothingIsLostWhenAnExceptionPasses) {
  const ObjectRef dictionary = host->dictionary({{"a"s, std::int32_t{1}}});
  for (long n = 1; n < 5; ++n) {
    SCOPED_TRACE(n);
    foundation.throwAtMessage(n);
    EXPECT_NE(catching([&] { toNativeObject(dictionary); }), nullptr);
    EXPECT_EQ(foundation.unbalanced(), "");
  }
  EXPECT_EQ(host->references(dictionary.handle()), 1);
}

// --- the cache of methods

TEST_F(DictionariesTest, MethodsAreLoadedOnceForEachObjectMet) {
  const ObjectRef a = host->dictionary({{"a"s, std::int32_t{1}}});
  const ObjectRef b = host->dictionary({{"b"s, std::int32_t{1}}});
  host->clearRecords();
  toNative(a);
  toNative(a);
  EXPECT_EQ(host->calls("REALLoadObjectMethod"), 3);
  EXPECT_EQ(LastDictionary, a.handle());
  toNative(b);
  toNative(a);
  EXPECT_EQ(host->calls("REALLoadObjectMethod"), 9);
}

TEST_F(DictionariesTest, BothDirectionsShareTheCache) {
  const auto made = ObjectRef::adopt(
      NSDictionaryRB(reinterpret_cast<CFDictionaryRef>(foundation.dictionary({{"a"s, one()}}))));
  host->clearRecords();
  EXPECT_EQ(toNative(made), R"({"a" = 1})");
  EXPECT_EQ(host->calls("REALLoadObjectMethod"), 0);
}

Lines declarations;

TEST_F(DictionariesTest, MethodsAreLoadedByTheirDeclarationsInOrder) {
  declarations.clear();
  intercept("REALLoadObjectMethod", [](REALobject object, const char* declaration) {
    declarations.emplace_back(declaration);
    return callHost<void*>("REALLoadObjectMethod", object, declaration);
  });
  EXPECT_EQ(toHost(foundation.dictionary({{"a"s, one()}})), R"({"a": Int32 1})");
  EXPECT_EQ(declarations,
            (Lines{"Value(key As Variant, Assigns _value As Variant)",
                   "Value(key As Variant) As Variant", "Key(index As Integer) As Variant"}));
}

// The object that is kept while its methods are being loaded.
std::vector<REALobject> keptWhileLoading;

TEST_F(DictionariesTest, TheObjectIsKeptBeforeItsFirstMethodIsLoaded) {
  keptWhileLoading.clear();
  intercept("REALLoadObjectMethod", [](REALobject object, const char* declaration) {
    keptWhileLoading.push_back(LastDictionary);
    return callHost<void*>("REALLoadObjectMethod", object, declaration);
  });
  const ObjectRef dictionary = host->dictionary({{std::int64_t{1}, std::int32_t{2}}});
  EXPECT_EQ(toNative(dictionary), "{1 = 2}");
  EXPECT_EQ(keptWhileLoading, std::vector<REALobject>(3, dictionary.handle()));
}

TEST_F(DictionariesTest, ADictionaryWithinAnotherIsMetInBetween) {
  const ObjectRef inner = host->dictionary({{"x"s, 0.5}});
  const ObjectRef outer = host->dictionary({{"a"s, inner}, {"b"s, std::int32_t{1}}});
  host->clearRecords();
  EXPECT_EQ(toNative(outer), R"({"a" = {"x" = 0.5}, "b" = 1})");
  // Three each for the outer one, the inner one, the outer one; one to see whether that is a file.
  EXPECT_EQ(host->calls("REALLoadObjectMethod"), 10);
}

TEST_F(DictionariesTest, ANativeDictionaryWithinAnotherIsMadeFirst) {
  const id inner = foundation.dictionary({{"x"s, one()}});
  const id outer = foundation.dictionary({{"a"s, inner}, {"b"s, one()}});
  host->clearRecords();
  EXPECT_EQ(toHost(outer), R"({"a": {"x": Int32 1}, "b": Int32 1})");
  EXPECT_EQ(host->calls("REALLoadObjectMethod"), 6);  // inner, outer
}

TEST_F(DictionariesTest, TheObjectIsMetAnewBeforeEachOfTheTwoCalls) {
  static Host* theHost = nullptr;
  theHost = host.get();
  const ObjectRef dictionary = host->dictionary({{"a"s, std::int32_t{1}}});
  host->clearRecords();
  LastDictionary = dictionary.handle();
  LastDictionaryKeyGetter = [](REALobject, std::int32_t) {
    LastDictionary = nullptr;  // as if another dictionary had been converted meanwhile
    return theHost->variant("a"s).release();
  };
  LastDictionaryGetter = nullptr;
  EXPECT_EQ(toNative(dictionary), R"({"a" = 1})");
  EXPECT_EQ(host->calls("REALLoadObjectMethod"), 3);
  EXPECT_EQ(LastDictionary, dictionary.handle());
}

TEST_F(DictionariesTest, TheLastObjectIsNotHeld) {
  ObjectRef dictionary = host->dictionary({{"a"s, std::int32_t{1}}});
  const REALobject handle = dictionary.handle();
  toNative(dictionary);
  EXPECT_EQ(host->references(handle), 1);
  dictionary.reset();
  EXPECT_EQ(LastDictionary, handle);
  EXPECT_EQ(host->references(handle), 0);
}

TEST_F(DictionariesTest, MethodsThatWereMissingStayMissingForTheObject) {
  const ObjectRef a = host->dictionary({{"a"s, std::int32_t{1}}});
  host->clearRecords();
  host->hideFirst("REALLoadObjectMethod", 3);
  EXPECT_EQ(toNative(a), "{}");
  EXPECT_EQ(host->lookups("REALLoadObjectMethod"), 3);
  EXPECT_EQ(toNative(a), "{}");
  EXPECT_EQ(host->lookups("REALLoadObjectMethod"), 3);
  toNative(host->dictionary({{"b"s, std::int32_t{1}}}));
  EXPECT_EQ(toNative(a), R"({"a" = 1})");
}

// --- lists of strings

class FillStringArrayTest : public DictionariesTest {
 protected:
  std::string filled(const ObjectRef& array, id items) {
    FillStringArray(array.as<REALstringArray>(), items);
    return host->describe(array);
  }
  ObjectRef strings(const std::vector<Value>& elements = {}) {
    return host->array(Host::kStringElements, elements);
  }
};

TEST_F(FillStringArrayTest, InsertsInOrder) {
  EXPECT_EQ(filled(strings(), foundation.array({text("a"), text(""), text("c")})),
            R"(["a", "", "c"])");
  EXPECT_EQ(host->calls("REALUnlockString"), 2);  // the empty text is a null handle
}

TEST_F(FillStringArrayTest, InsertsNothingOfNothing) {
  EXPECT_EQ(filled(strings(), foundation.array({})), "[]");
  EXPECT_EQ(filled(strings(), nullptr), "[]");
  EXPECT_EQ(host->lookups("RuntimeArrayDirectGetInsertProc"), 0);
}

TEST_F(FillStringArrayTest, InsertsBeforeWhatIsThere) {
  EXPECT_EQ(filled(strings({"old"s}), foundation.array({text("a"), text("b")})),
            R"(["a", "b", "old"])");
}

TEST_F(FillStringArrayTest, AsksForTheProcedureForEveryElement) {
  const ObjectRef array = strings();
  host->clearRecords();
  filled(array, foundation.array({text("a"), text("b"), text("c")}));
  EXPECT_EQ(host->calls("RuntimeArrayDirectGetInsertProc"), 3);
}

TEST_F(FillStringArrayTest, AHostThatInsertsNothingKeepsItsArray) {
  host->hide("RuntimeArrayDirectGetInsertProc");
  EXPECT_EQ(filled(strings({"old"s}), foundation.array({text("a")})), R"(["old"])");
}

TEST_F(FillStringArrayTest, AnArrayWithoutAProcedureKeepsWhatItHas) {
  host->answerNull("RuntimeArrayDirectGetInsertProc", 1);
  EXPECT_EQ(filled(strings({"old"s}), foundation.array({text("a"), text("b")})), R"(["old", "b"])");
}

TEST_F(FillStringArrayTest, NothingIsLostWhenAnExceptionPasses) {
  const ObjectRef array = strings();
  const id items = foundation.array({text("a"), text("b")});
  foundation.throwAtCall("CFStringGetCString", 2);
  EXPECT_NE(catching([&] { FillStringArray(array.as<REALstringArray>(), items); }), nullptr);
  EXPECT_EQ(host->describe(array), R"(["a"])");
}

TEST_F(FillStringArrayTest, WithoutAnArrayThereIsNothingToDo) {
  FillStringArray(nullptr, foundation.array({text("a")}));
  EXPECT_EQ(host->sequence(), Lines{});
}

}  // namespace
}  // namespace zel
