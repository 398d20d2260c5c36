// What the defaults refuse when it is set, because no property list can hold it.
#include "tests/native/values.h"

namespace native_test {
namespace {

using zel::id;
using zel::send;

class PropertyListValuesTest : public NativeTest {
 protected:
  /// The exception that setting the value raises; the key keeps what it had.
  static std::string setting(id value) {
    const auto set = [](id any) {
      send<void, "setObject:forKey:">(standardDefaults(), any, string("kept"));
    };
    set(object("before"));
    std::string raised = raisedBy([&] { set(value); });
    const std::string now = literal(send<id, "objectForKey:">(standardDefaults(), string("kept")));
    EXPECT_EQ(now == "\"before\"", !raised.empty()) << now;
    return raised;
  }
  /// The same with a whole domain.
  static std::string settingDomain(id domain) {
    const auto set = [](id any) {
      send<void, "setPersistentDomain:forName:">(standardDefaults(), any, string("kept.domain"));
    };
    set(dictionary({{object("a"), integer(1)}}));
    std::string raised = raisedBy([&] { set(domain); });
    const std::string now =
        literal(send<id, "persistentDomainForName:">(standardDefaults(), string("kept.domain")));
    EXPECT_EQ(now == "{\"a\": i 1}", !raised.empty()) << now;
    send<void, "removePersistentDomainForName:">(standardDefaults(), string("kept.domain"));
    return raised;
  }
  static std::string reason(id value) {
    const id raised = zel::catching(
        [&] { send<void, "setObject:forKey:">(standardDefaults(), value, string("the key")); });
    return text(send<id, "reason">(raised));
  }
};

const char* const kRefused = "NSInvalidArgumentException";

TEST_F(PropertyListValuesTest, KeysThatAreNoTexts) {
  for (const id key : {integer(1), boolean(true), real(0.5), date(0), dataOf("x"), list({}),
                       dictionary({}), null()}) {
    const id bad = dictionary({{object("good"), object("value")}, {key, object("value")}});
    EXPECT_EQ(setting(bad), kRefused);
    EXPECT_EQ(setting(list({integer(1), dictionary({{object("deep"), bad}})})), kRefused);
    EXPECT_EQ(settingDomain(bad), kRefused);
    EXPECT_EQ(settingDomain(dictionary({{object("deep"), list({bad})}})), kRefused);
  }
}

TEST_F(PropertyListValuesTest, NullAndOtherObjects) {
  const id other = zel::autoreleased(send<id, "new">(zel::classNamed<"NSObject">()));
  for (const id bad : {null(), other}) {
    EXPECT_EQ(setting(bad), kRefused);
    EXPECT_EQ(setting(list({bad})), kRefused);
    EXPECT_EQ(setting(dictionary({{object("k"), list({bad})}})), kRefused);
    EXPECT_EQ(settingDomain(dictionary({{object("k"), bad}})), kRefused);
    EXPECT_EQ(settingDomain(dictionary({{object("k"), list({bad})}})), kRefused);
  }
}

TEST_F(PropertyListValuesTest, WhatHoldsItself) {
  const id inner = list({integer(1)});
  const id self = list({dictionary({{object("inner"), inner}})});
  send<void, "addObject:">(inner, self);
  EXPECT_EQ(setting(self), kRefused);
  EXPECT_EQ(settingDomain(dictionary({{object("k"), self}})), kRefused);
  send<void, "removeLastObject">(inner);  // or they would never go away
}

TEST_F(PropertyListValuesTest, NestingBeyondTheBound) {
  EXPECT_EQ(setting(nested(256)), "");
  EXPECT_EQ(setting(nested(257)), kRefused);
  EXPECT_EQ(settingDomain(dictionary({{object("k"), nested(256)}})), "");
  EXPECT_EQ(settingDomain(dictionary({{object("k"), nested(257)}})), kRefused);
}

TEST_F(PropertyListValuesTest, NestingBeyondTheBoundOfWhatStandsInSeveralPlaces) {
  const auto shared = [](unsigned outer) {
    const id inner = nested(200);
    id around = list({inner});
    while (--outer > 0) around = list({around});
    return list({inner, around});
  };
  EXPECT_EQ(setting(shared(55)), "");
  EXPECT_EQ(setting(shared(56)), kRefused);
}

// Sixty lists, each of which holds the next one twice.
TEST_F(PropertyListValuesTest, WhatStandsInManyPlacesIsLookedAtOnce) {
  id doubled = list({integer(1)});
  for (int i = 0; i < 60; ++i) doubled = list({doubled, doubled});
  EXPECT_EQ(
      reason(list({doubled, null()})),
      "attempt to set non property list object for key (the key): it holds an object of class "
      "NSNull");
}

TEST_F(PropertyListValuesTest, EverythingElseIsTaken) {
  for (const id good :
       {object("text"), integer(1), boolean(false), real(0.5), date(0), dataOf(""), list({}),
        dictionary({}), dictionary({{object(""), list({dataOf("x")})}})}) {
    EXPECT_EQ(setting(good), "");
    EXPECT_EQ(settingDomain(dictionary({{object("k"), good}})), "");
  }
}

TEST_F(PropertyListValuesTest, TheReasonIsInTheException) {
  EXPECT_EQ(reason(dictionary({{integer(1), integer(1)}})).substr(0, 89),
            "attempt to set non property list object for key (the key): a key is no text but of "
            "class ");
  EXPECT_EQ(reason(nested(257)),
            "attempt to set non property list object for key (the key): more than 256 lists and "
            "dictionaries stand within each other");
}

TEST_F(PropertyListValuesTest, NothingRemovesTheKeyAndADomainMayBeNothing) {
  EXPECT_EQ(
      raisedBy([] { send<void, "setObject:forKey:">(standardDefaults(), id{}, string("kept")); }),
      "");
  EXPECT_EQ(literal(send<id, "objectForKey:">(standardDefaults(), string("kept"))), "nil");
}

}  // namespace
}  // namespace native_test
