// Lists and dictionaries of the double, and objects as literals.

#include "native/geometry.h"
#include "tests/foundation_double/fixture.h"

namespace {

using zel::id;
using zel::NSUInteger;
using zel::send;

class FoundationCollectionTest : public FoundationTest {
 protected:
  id mutableArray() { return send<id, "array">(zel::lookUpClass("NSMutableArray")); }
  id mutableDictionary(NSUInteger capacity) {
    return send<id, "dictionaryWithCapacity:">(zel::lookUpClass("NSMutableDictionary"), capacity);
  }
};

// --- lists

TEST_F(FoundationCollectionTest, AListHoldsItsElementsInOrder) {
  const id list = mutableArray();
  EXPECT_TRUE(zel::isKindOf<"NSArray">(list));
  EXPECT_EQ((send<NSUInteger, "count">(list)), 0U);
  const id first = object("a");
  send<void, "addObject:">(list, first);
  send<void, "addObject:">(list, foundation_.number("i", 2));
  EXPECT_EQ(foundation_.references(first), 2);
  EXPECT_EQ((send<NSUInteger, "count">(list)), 2U);
  EXPECT_EQ((send<id, "objectAtIndex:">(list, NSUInteger{0})), first);
  EXPECT_EQ(foundation_.describe(list), "(\"a\", 2)");
  EXPECT_EQ(raised([&] { send<id, "objectAtIndex:">(list, NSUInteger{2}); }),
            "NSRangeException: -[NSMutableArray objectAtIndex:]: no element 2 of 2");
}

TEST_F(FoundationCollectionTest, AListTakesNoNil) {
  const id list = mutableArray();
  EXPECT_EQ(raised([&] { send<void, "addObject:">(list, id{nullptr}); }),
            "NSInvalidArgumentException: -[NSMutableArray addObject:]: attempt to insert nil");
  EXPECT_EQ(foundation_.describe(list), "()");
}

TEST_F(FoundationCollectionTest, AnImmutableListCantGrow) {
  const id list = foundation_.array({object("a")});
  EXPECT_FALSE(zel::respondsTo<"addObject:">(list));
  EXPECT_TRUE(zel::isKindOf<"NSArray">(list));
  EXPECT_FALSE(zel::isKindOf<"NSMutableArray">(list));
}

TEST_F(FoundationCollectionTest, TheCapacityIsRemembered) {
  const id list =
      send<id, "arrayWithCapacity:">(zel::lookUpClass("NSMutableArray"), NSUInteger{12});
  EXPECT_EQ(foundation_.capacity(list), 12U);
  EXPECT_EQ(foundation_.capacity(mutableArray()), std::nullopt);
  EXPECT_EQ(foundation_.capacity(mutableDictionary(3)), 3U);
  EXPECT_EQ(foundation_.capacity(foundation_.dictionary({})), std::nullopt);
}

TEST_F(FoundationCollectionTest, AnEnumeratorGivesEachElementAndThenNil) {
  const id first = object("a");
  const id second = object("b");
  const id enumerator = send<id, "objectEnumerator">(foundation_.array({first, second}));
  EXPECT_EQ((send<id, "nextObject">(enumerator)), first);
  EXPECT_EQ((send<id, "nextObject">(enumerator)), second);
  EXPECT_EQ((send<id, "nextObject">(enumerator)), nullptr);
  EXPECT_EQ((send<id, "nextObject">(enumerator)), nullptr);
  EXPECT_EQ((send<id, "nextObject">(send<id, "objectEnumerator">(id{nullptr}))), nullptr);
}

// --- dictionaries

TEST_F(FoundationCollectionTest, KeysAreComparedByValue) {
  const id dictionary = mutableDictionary(4);
  EXPECT_TRUE(zel::isKindOf<"NSDictionary">(dictionary));
  send<void, "setObject:forKey:">(dictionary, object("text"), object("1"));
  send<void, "setObject:forKey:">(dictionary, object("integer"), foundation_.number("i", 1));
  send<void, "setObject:forKey:">(dictionary, object("double"), foundation_.number("d", 1.0));
  send<void, "setObject:forKey:">(dictionary, object("half"), foundation_.number("d", 0.5));
  EXPECT_EQ(foundation_.describe(dictionary), "{\"1\" = \"text\", 1 = \"double\", 0.5 = \"half\"}");
  EXPECT_EQ((send<NSUInteger, "count">(dictionary)), 3U);
  EXPECT_EQ(foundation_.describe(send<id, "objectForKey:">(dictionary, object("1"))), "\"text\"");
  EXPECT_EQ(
      foundation_.describe(send<id, "objectForKey:">(dictionary, foundation_.number("Q", 1U))),
      "\"double\"");
  EXPECT_EQ((send<id, "objectForKey:">(dictionary, object("2"))), nullptr);
  EXPECT_EQ((send<id, "objectForKey:">(dictionary, id{nullptr})), nullptr);
}

TEST_F(FoundationCollectionTest, OtherKeysAreComparedByIdentity) {
  const id key = foundation_.data("k");
  const id dictionary = foundation_.dictionary({std::pair{key, object("v")}});
  EXPECT_NE((send<id, "objectForKey:">(dictionary, key)), nullptr);
  EXPECT_EQ((send<id, "objectForKey:">(dictionary, foundation_.data("k"))), nullptr);
}

TEST_F(FoundationCollectionTest, KeysStayInTheOrderInWhichTheyCame) {
  const id dictionary = mutableDictionary(0);
  for (const char* const key : {"z", "a", "m", "a"}) {
    send<void, "setObject:forKey:">(dictionary, object("v"), object(key));
  }
  EXPECT_EQ(foundation_.describe(send<id, "allKeys">(dictionary)), "(\"z\", \"a\", \"m\")");
}

TEST_F(FoundationCollectionTest, ADictionaryTakesNoNil) {
  const id dictionary = mutableDictionary(0);
  EXPECT_EQ(raised([&] { send<void, "setObject:forKey:">(dictionary, id{nullptr}, object("k")); }),
            "NSInvalidArgumentException: -[NSMutableDictionary setObject:forKey:]: the object is "
            "nil");
  EXPECT_EQ(raised([&] { send<void, "setObject:forKey:">(dictionary, object("v"), id{nullptr}); }),
            "NSInvalidArgumentException: -[NSMutableDictionary setObject:forKey:]: the key is nil");
}

TEST_F(FoundationCollectionTest, AnImmutableDictionaryCantGrow) {
  const id empty = send<id, "dictionary">(zel::lookUpClass("NSDictionary"));
  EXPECT_EQ(foundation_.describe(empty), "{}");
  EXPECT_FALSE(zel::respondsTo<"setObject:forKey:">(empty));
  EXPECT_FALSE(zel::isKindOf<"NSMutableDictionary">(empty));
}

TEST_F(FoundationCollectionTest, ACollectionLetsGoOfWhatItHolds) {
  const id element = object("a");
  const id list = zel::retained(foundation_.array({element}));
  const id dictionary = zel::retained(foundation_.dictionary({{"k", list}}));
  foundation_.drainPool();
  EXPECT_EQ(foundation_.references(element), 1);
  EXPECT_EQ(foundation_.unbalanced(), "NSArray: 1 reference\nNSDictionary: 1 reference\n");
  zel::release(list);
  EXPECT_EQ(foundation_.references(element), 1);
  zel::release(dictionary);
  EXPECT_EQ(foundation_.references(element), 0);
}

// --- literals

TEST_F(FoundationCollectionTest, EveryObjectHasALiteral) {
  EXPECT_EQ(foundation_.describe(nullptr), "nil");
  EXPECT_EQ(foundation_.describe(foundation_.null()), "null");
  EXPECT_EQ(foundation_.describe(foundation_.object("NSObject")), "NSObject");
  EXPECT_EQ(foundation_.describe(foundation_.string("a\"b\\c\u00E4")), "\"a\\\"b\\\\c\u00E4\"");
  EXPECT_EQ(foundation_.describe(foundation_.data({"\x01\xFF\0", 3})), "<01ff00>");
  EXPECT_EQ(foundation_.describe(foundation_.date(86400.5)), "date(86400.5)");
  EXPECT_EQ(foundation_.describe(foundation_.url("http://x/")), "url(\"http://x/\")");
  EXPECT_EQ(foundation_.describe(foundation_.dictionary(
                {{"a", foundation_.array({foundation_.number("i", 1), foundation_.number("d", 2.5),
                                          foundation_.data("\x01\x02")})},
                 {"b", foundation_.dictionary({})}})),
            "{\"a\" = (1, 2.5, <0102>), \"b\" = {}}");
}

TEST_F(FoundationCollectionTest, ADeadObjectIsDescribedAsDead) {
  const id text = object("a");
  foundation_.drainPool();
  EXPECT_EQ(foundation_.describe(text), "dead NSString");
  collectFailures();
  EXPECT_THROW(foundation_.describe(&failures_), std::logic_error);
  EXPECT_EQ(failures_, Lines{"a description of what is no object"});
}

}  // namespace
