// Lists by key: what the host and Foundation are asked for, in which order, and what is left when
// something fails.
#include <algorithm>

#include "native/exceptions.h"
#include "plugin/host.h"
#include "tests/support/intercept.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

class ListsTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    provideFamily();
    useNewObject();
  }
  void TearDown() override {
    defaults.reset();
    PluginTest::TearDown();
  }
  void useNewObject() {
    defaults = host->construct("NSUserDefaultsZEL");
    host->clearRecords();
    foundation.clearRecords();
  }
  void useHost(double version) {
    defaults.reset();
    startHost({.version = version});
    provideFamily();
    useNewObject();
  }
  id text(const char* utf8) {
    return foundation_double::Foundation::asObject(foundation.string(utf8));
  }
  // What Foundation answers to the message.
  void answer(const char* selector, id reply) {
    replied = reply;
    foundation.addMethod("NSUserDefaults", selector, [](id, SEL, CFStringRef) { return replied; });
  }
  Lines messagesOf(const std::string& className) {
    Lines sent;
    for (const std::string& message : foundation.messages()) {
      if (message.find("[" + className + " ") != std::string::npos) sent.push_back(message);
    }
    return sent;
  }
  ObjectRef strings(const std::vector<Value>& elements) {
    return host->array(Host::kStringElements, elements);
  }
  ObjectRef variants(const std::vector<Value>& elements) {
    return host->array(Host::kObjectElements, elements);
  }
  // What stands in the store afterwards, as the host reads it.
  std::string stored(const std::string& setter, const ObjectRef& list) {
    ask(defaults, setter, {"key"s, list});
    return host->describe(ask(defaults, "variantForKey", {"key"s}));
  }

  ObjectRef defaults;
  static inline id replied = nullptr;
};

// --- lists that are given

TEST_F(ListsTest, TheListsAreOfTheirElementsType) {
  EXPECT_EQ(host->typeOf(std::get<ObjectRef>(ask(defaults, "stringArrayForKey", {"key"s}))), 4104);
  EXPECT_EQ(host->typeOf(std::get<ObjectRef>(ask(defaults, "arrayForKey", {"key"s}))), 4105);
}

std::string made;

TEST_F(ListsTest, TheListsAreMadeEmpty) {
  intercept("RuntimeArrayCreateSingleDimBoundedArray", [](std::int32_t type, std::int32_t bound) {
    made = std::to_string(type) + " to " + std::to_string(bound);
    return callHost<REALarray>("RuntimeArrayCreateSingleDimBoundedArray", type, bound);
  });
  ask(defaults, "stringArrayForKey", {"key"s});
  EXPECT_EQ(made, "3 to -1");
  ask(defaults, "arrayForKey", {"key"s});
  EXPECT_EQ(made, "4 to -1");
  ask(defaults, "persistentDomainNames");
  EXPECT_EQ(made, "3 to -1");
}

TEST_F(ListsTest, ANativeListIsWalkedToItsEnd) {
  answer("arrayForKey:", foundation.array({foundation.boolean(true), foundation.boolean(false)}));
  foundation.clearRecords();
  EXPECT_EQ(host->describe(ask(defaults, "arrayForKey", {"key"s})), "[true, false]");
  EXPECT_EQ(messagesOf("NSArray"), Lines{"-[NSArray objectEnumerator]"});
  answer("stringArrayForKey:", foundation.array({text("a"), text("b")}));
  foundation.clearRecords();
  EXPECT_EQ(host->describe(ask(defaults, "stringArrayForKey", {"key"s})), R"(["a", "b"])");
  EXPECT_EQ(messagesOf("NSArray"), Lines{"-[NSArray objectEnumerator]"});
}

TEST_F(ListsTest, EveryElementIsInsertedThroughTheArraysProcedure) {
  answer("arrayForKey:", foundation.array({foundation.boolean(true), foundation.boolean(false)}));
  EXPECT_EQ(host->describe(ask(defaults, "arrayForKey", {"key"s})), "[true, false]");
  EXPECT_EQ(host->sequence(),
            (Lines{"RuntimeArrayCreateSingleDimBoundedArray", "REALGetStringCFString",
                   "BooleanToVariant", "RuntimeArrayDirectGetInsertProc", "REALUnlockObject",
                   "BooleanToVariant", "RuntimeArrayDirectGetInsertProc", "REALUnlockObject"}));
}

Lines inserted;

TEST_F(ListsTest, EveryElementHasItsIndexWhateverBecomesOfIt) {
  inserted.clear();
  intercept("RuntimeArrayDirectGetInsertProc", [](REALarray) {
    return +[](REALarray, std::int32_t index, REALobject value) {
      inserted.push_back(std::to_string(index) + (value == nullptr ? " nothing" : " something"));
    };
  });
  answer("arrayForKey:", foundation.array({foundation.null(), foundation.boolean(true),
                                           foundation.object("NSObject")}));
  ask(defaults, "arrayForKey", {"key"s});
  EXPECT_EQ(inserted, (Lines{"0 nothing", "1 something", "2 nothing"}));
}

TEST_F(ListsTest, AnArrayWithoutAProcedureStaysEmpty) {
  host->answerNull("RuntimeArrayDirectGetInsertProc");
  answer("arrayForKey:", foundation.array({foundation.boolean(true)}));
  EXPECT_EQ(host->describe(ask(defaults, "arrayForKey", {"key"s})), "[]");
  answer("stringArrayForKey:", foundation.array({text("a")}));
  EXPECT_EQ(host->describe(ask(defaults, "stringArrayForKey", {"key"s})), "[]");
}

TEST_F(ListsTest, PartOfAListOfTextsIsStillGivenAfterAnException) {
  answer("stringArrayForKey:", foundation.array({text("a"), text("b"), text("c")}));
  foundation.throwAtCall("CFStringGetCString", 3);
  const Outcome outcome = host->call(defaults, "stringArrayForKey", {"key"s});
  EXPECT_EQ(host->describe(outcome.value), R"(["a", "b"])");
  EXPECT_EQ(outcome.raised, (Raised{"NSExceptionZEL", "told to fail", 0}));
}

TEST_F(ListsTest, PartOfAListOfNamesIsStillGivenAfterAnException) {
  foundation.throwAtCall("CFStringGetCString", 2);
  const Outcome outcome = host->call(defaults, "volatileDomainNames");
  EXPECT_EQ(host->describe(outcome.value), R"(["NSArgumentDomain"])");
  EXPECT_EQ(outcome.raised, (Raised{"NSExceptionZEL", "told to fail", 0}));
}

// --- lists that are taken

TEST_F(ListsTest, TextsAreReadOneByOne) {
  const ObjectRef list = strings({"a"s, ""s, "b"s});
  host->clearRecords();
  ask(defaults, "setStringArrayValue", {"key"s, list});
  EXPECT_EQ(host->sequence(),
            (Lines{"REALGetStringCFString", "RuntimeUBound", "RuntimeDirectReadStringArray",
                   "REALGetStringCFString", "REALUnlockString", "RuntimeDirectReadStringArray",
                   "RuntimeDirectReadStringArray", "REALGetStringCFString", "REALUnlockString"}));
  EXPECT_EQ(messagesOf("NSMutableArray"),
            (Lines{"+[NSMutableArray arrayWithCapacity:]", "-[NSMutableArray addObject:]",
                   "-[NSMutableArray addObject:]"}));
}

TEST_F(ListsTest, VariantsAreReadOneByOne) {
  const ObjectRef list = variants({0.5, std::monostate{}, std::int32_t{1}});
  host->clearRecords();
  ask(defaults, "setArrayValue", {"key"s, list});
  EXPECT_EQ(host->sequence(),
            (Lines{"REALGetStringCFString", "RuntimeUBound", "RuntimeDirectReadObjectArray",
                   "REALLoadGlobalMethod", "VarType", "VariantToDouble", "REALUnlockObject",
                   "RuntimeDirectReadObjectArray", "RuntimeDirectReadObjectArray", "VarType",
                   "VariantToInt32", "REALUnlockObject"}));
}

TEST_F(ListsTest, OlderHostsListsAreReadInPlace) {
  useHost(2013.9);
  const ObjectRef texts = strings({"a"s, ""s});
  const ObjectRef values = variants({std::monostate{}, 0.5});
  host->clearRecords();
  ask(defaults, "setStringArrayValue", {"key"s, texts});
  EXPECT_EQ(host->sequence(), (Lines{"REALGetStringCFString", "RuntimeUBound", "REALLockString",
                                     "REALGetStringCFString", "REALUnlockString"}));
  host->clearRecords();
  ask(defaults, "setArrayValue", {"key"s, values});
  EXPECT_EQ(host->sequence(),
            (Lines{"REALGetStringCFString", "RuntimeUBound", "REALLockObject",
                   "REALLoadGlobalMethod", "VarType", "VariantToDouble", "REALUnlockObject"}));
}

TEST_F(ListsTest, ATextIsHeldUntilTheListHoldsIt) {
  const ObjectRef list = strings({"a"s});
  const Lines asked = traced([&] { ask(defaults, "setStringArrayValue", {"key"s, list}); });
  EXPECT_EQ(asked, (Lines{"REALGetStringCFString", "CFStringCreateWithCharacters",
                          "-[NSString autorelease]", "RuntimeUBound",
                          "+[NSMutableArray arrayWithCapacity:]", "RuntimeDirectReadStringArray",
                          "REALGetStringCFString", "CFStringCreateWithCharacters",
                          "-[NSString autorelease]", "-[NSMutableArray addObject:]",
                          "REALUnlockString", "-[NSUserDefaults setObject:forKey:]"}));
}

TEST_F(ListsTest, AVariantIsHeldUntilTheListHoldsWhatItBecame) {
  const ObjectRef list = variants({0.5});
  const Lines asked = traced([&] { ask(defaults, "setArrayValue", {"key"s, list}); });
  EXPECT_EQ(asked, (Lines{"REALGetStringCFString", "CFStringCreateWithCharacters",
                          "-[NSString autorelease]", "RuntimeUBound",
                          "+[NSMutableArray arrayWithCapacity:]", "RuntimeDirectReadObjectArray",
                          "REALLoadGlobalMethod", "VarType", "VariantToDouble",
                          "+[NSNumber numberWithDouble:]", "-[NSMutableArray addObject:]",
                          "REALUnlockObject", "-[NSUserDefaults setObject:forKey:]"}));
}

TEST_F(ListsTest, AnElementReadInPlaceIsHeldAsLong) {
  useHost(2013.9);
  const ObjectRef list = variants({0.5});
  const Lines asked = traced([&] { ask(defaults, "setArrayValue", {"key"s, list}); });
  EXPECT_EQ(asked, (Lines{"REALGetStringCFString", "CFStringCreateWithCharacters",
                          "-[NSString autorelease]", "RuntimeUBound",
                          "+[NSMutableArray arrayWithCapacity:]", "REALLockObject",
                          "REALLoadGlobalMethod", "VarType", "VariantToDouble",
                          "+[NSNumber numberWithDouble:]", "-[NSMutableArray addObject:]",
                          "REALUnlockObject", "-[NSUserDefaults setObject:forKey:]"}));
}

// What the host gives for an element: the only reference on a host object that owns a native one.
ObjectRef onlyOwner;

TEST_F(ListsTest, AnObjectThatDiesWithItsElementOutlivesItInTheList) {
  family->provideObjectClass("NSColorZEL");
  onlyOwner = family->objectOf("NSColorZEL", text("red"));
  foundation.drainPool();
  const ObjectRef list = variants({std::monostate{}});
  intercept("RuntimeDirectReadObjectArray",
            [](REALobjectArray, std::int32_t) { return onlyOwner.release(); });
  EXPECT_EQ(stored("setArrayValue", list), R"(["red"])");
}

TEST_F(ListsTest, AnElementThatTheListRefusesIsGivenBackToo) {
  foundation.addMethod("NSMutableArray", "addObject:", [](id, SEL, id) {
    objc_exception_throw(foundation_double::Foundation::shared().exception("Full", "No more."));
  });
  const ObjectRef date = host->date({2001, 1, 1, 0, 0, 0});
  const struct {
    const char* setter;
    ObjectRef list;
    const char* unlock;
  } rows[] = {{"setStringArrayValue", strings({"a"s}), "REALUnlockString"},
              {"setArrayValue", variants({date}), "REALUnlockObject"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.setter);
    Lines asked = traced([&] {
      EXPECT_EQ(host->call(defaults, row.setter, {"key"s, row.list}).raised,
                (Raised{"NSExceptionZEL", "No more.", 0}));
    });
    const auto refused = std::find(asked.begin(), asked.end(), "-[NSMutableArray addObject:]");
    ASSERT_LT(refused + 1 - asked.begin(), static_cast<long>(asked.size()));
    EXPECT_EQ(*(refused + 1), row.unlock);
  }
  EXPECT_EQ(host->references(date.handle()), 2);  // this one's, and the list's
}

TEST_F(ListsTest, NoListAsksForNoBound) {
  foundation.addMethod("NSUserDefaults", "setObject:forKey:", [](id, SEL, id, CFStringRef) {});
  ask(defaults, "setStringArrayValue", {"key"s, ObjectRef()});
  ask(defaults, "setArrayValue", {"key"s, ObjectRef()});
  EXPECT_EQ(host->calls("RuntimeUBound"), 0);
  EXPECT_EQ(messagesOf("NSMutableArray"), Lines{});
}

TEST_F(ListsTest, AnEmptyListHasNoElementsRead) {
  EXPECT_EQ(stored("setStringArrayValue", strings({})), "[]");
  EXPECT_EQ(stored("setArrayValue", variants({})), "[]");
  EXPECT_EQ(host->calls("RuntimeDirectReadStringArray"), 0);
  EXPECT_EQ(host->calls("RuntimeDirectReadObjectArray"), 0);
}

TEST_F(ListsTest, ATextThatCannotBeConvertedIsLeftOut) {
  const ObjectRef list = strings({"a"s, "b"s, "c"s});
  // The key's conversion, then each element's; the second element's fails on both roads.
  host->answerNull("REALGetStringCFString", 3);
  host->answerNull("REALGetStringCFString", 4);
  foundation.failCall("CFStringCreateWithCString");
  EXPECT_EQ(stored("setStringArrayValue", list), R"(["a", "c"])");
}

TEST_F(ListsTest, AListWithEmptyTextsComesBackShorter) {
  ask(defaults, "setStringArrayValue", {"key"s, strings({""s, "a"s, ""s})});
  EXPECT_EQ(host->describe(ask(defaults, "stringArrayForKey", {"key"s})), R"(["a"])");
}

TEST_F(ListsTest, AnExceptionAmongTheElementsStoresNothing) {
  // A text among variants can be read, the array's empty text can't be added.
  const ObjectRef list = variants({"a"s, host->array(4104, {""s})});
  const Outcome outcome = host->call(defaults, "setArrayValue", {"key"s, list});
  EXPECT_EQ(outcome.raised.value_or(Raised{}).className, "NSExceptionZEL");
  EXPECT_EQ(sentToDefaults(), Lines{});
}

}  // namespace
}  // namespace zel
