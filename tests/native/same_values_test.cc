// A value takes the place of another that Foundation thinks equal.
#include "tests/native/values.h"

namespace native_test {
namespace {

using zel::id;
using zel::send;

class SameValuesTest : public NativeTest {
 protected:
  static std::string stored() {
    return literal(send<id, "objectForKey:">(standardDefaults(), string("same")));
  }
  static void set(id value) {
    send<void, "setObject:forKey:">(standardDefaults(), value, string("same"));
  }
  /// Everything in turn, in this process and from the disk.
  static void expectKept(const std::vector<id>& values) {
    for (const id value : values) {
      set(value);
      EXPECT_EQ(stored(), literal(value));
    }
    for (const id value : values) {
      set(value);
      throughTheDisk();
      EXPECT_EQ(stored(), literal(value));
    }
  }
};

TEST_F(SameValuesTest, NumbersOfEveryType) {
  expectKept({integer(1), boolean(true), real(1), single(1), integer(1)});
  expectKept({real(0), real(-0.0), single(0), single(-0.0F), boolean(false), integer(0)});
}

TEST_F(SameValuesTest, TextsOfTheSameLook) {
  expectKept({object("\u00E9"), object("e\u0301"), object("\u00E9")});
}

TEST_F(SameValuesTest, ListsAndDictionaries) {
  expectKept({list({integer(1)}), list({boolean(true)}), list({list({real(1)})}),
              list({list({single(1)})})});
  expectKept({dictionary({{object("a"), integer(1)}}), dictionary({{object("a"), real(1)}})});
}

TEST_F(SameValuesTest, WholeDomains) {
  const auto setDomain = [](id domain) {
    send<void, "setPersistentDomain:forName:">(standardDefaults(), domain, string("same.domain"));
  };
  const auto storedDomain = [] {
    return literal(send<id, "persistentDomainForName:">(standardDefaults(), string("same.domain")));
  };
  for (const id value : {integer(1), boolean(true), real(1)}) {
    setDomain(dictionary({{object("a"), value}, {object("b"), object("text")}}));
    EXPECT_EQ(storedDomain(), "{\"a\": " + literal(value) + ", \"b\": \"text\"}");
    throughTheDisk();
    EXPECT_EQ(storedDomain(), "{\"a\": " + literal(value) + ", \"b\": \"text\"}");
  }
  send<void, "removePersistentDomainForName:">(standardDefaults(), string("same.domain"));
}

TEST_F(SameValuesTest, TheSameValueChangesNothing) {
  const id domain = zel::autoreleased(
      send<id, "initWithName:owner:">(send<id, "alloc">(zel::classNamed<"GSPersistentDomain">()),
                                      string("no.file"), standardDefaults()));
  const auto changes = [&](id value) {
    return send<zel::BOOL, "setObject:forKey:">(domain, value, string("k")) != 0;
  };
  EXPECT_TRUE(changes(list({integer(1), object("a"), real(0.5)})));
  EXPECT_FALSE(changes(list({integer(1), object("a"), real(0.5)})));
  EXPECT_TRUE(changes(list({integer(1), object("a"), single(0.5)})));
  EXPECT_TRUE(changes(nullptr));
  EXPECT_FALSE(changes(nullptr));
}

}  // namespace
}  // namespace native_test
