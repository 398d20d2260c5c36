// The defaults' files as binary property lists, byte by byte, and those of others.
#include <string>
#include <vector>

#include "native/geometry.h"
#include "tests/native/values.h"

namespace native_test {
namespace {

using zel::classNamed;
using zel::id;
using zel::NSUInteger;
using zel::send;

constexpr NSUInteger kXmlFormat = 100;
constexpr NSUInteger kBinaryFormat = 200;

std::string bigEndian(std::uint64_t number, std::size_t size) {
  std::string bytes;
  while (size-- > 0) bytes += static_cast<char>(number >> 8 * size);
  return bytes;
}

/// A binary property list of objects that are given byte by byte, in hexadecimal digits; the first
/// is the root.
std::string fileOf(const std::vector<std::string>& objects, std::size_t offsetSize = 1,
                   std::size_t referenceSize = 1) {
  std::string file = "bplist00";
  std::string table;
  for (const std::string& object : objects) {
    table += bigEndian(file.size(), offsetSize);
    file += bytesOf(object);
  }
  const std::size_t start = file.size();
  return file + table + bigEndian(offsetSize, 7) + bigEndian(referenceSize, 1) +
         bigEndian(objects.size(), 8) + bigEndian(0, 8) + bigEndian(start, 8);
}

/// The objects of so many lists in each other, the first of them of that number; a text is in the
/// last.
std::vector<std::string> nestedObjects(std::size_t first, std::size_t levels) {
  std::vector<std::string> objects;
  for (std::size_t i = 1; i <= levels; ++i)
    objects.push_back("a1" + hexadecimal(bigEndian(first + i, 2)));
  objects.emplace_back("50");
  return objects;
}

class BinaryListsTest : public NativeTest {
 protected:
  /// What comes back of a value from the disk.
  static std::string comesBack(id value) {
    send<void, "setObject:forKey:">(standardDefaults(), value, string("value"));
    throughTheDisk();
    return literal(send<id, "objectForKey:">(standardDefaults(), string("value")));
  }
  static std::string read(const std::vector<std::string>& objects) {
    return literal(parsed(fileOf(objects)));
  }
};

// --- what is written

// The dictionary, its key and the value; their offsets; how to read those.
TEST_F(BinaryListsTest, EveryByteOfAFile) {
  const std::string file = fileOfDomain(dictionary({{object("a"), integer(5)}}));
  EXPECT_EQ(hexadecimal(file), hexadecimal("bplist00" + bytesOf("d1 01 02  51 61  10 05"
                                                                "08 0b 0d"
                                                                "00 00 00 00 00 00 01 01"
                                                                "00 00 00 00 00 00 00 03"
                                                                "00 00 00 00 00 00 00 00"
                                                                "00 00 00 00 00 00 00 0f")));
}

struct Written {
  id (*value)();
  const char* bytes;
};

const Written kWritten[] = {
    {[] { return boolean(true); }, "09"},
    {[] { return boolean(false); }, "08"},
    {[] { return integer(255); }, "10 ff"},
    {[] { return integer(256); }, "11 0100"},
    {[] { return integer(65536); }, "12 00010000"},
    {[] { return integer(4294967295); }, "12 ffffffff"},
    {[] { return integer(4294967296); }, "13 0000000100000000"},
    {[] { return integer(-1); }, "13 ffffffffffffffff"},
    {[] { return unsignedInteger(0x8000000000000005); }, "14 0000000000000000 8000000000000005"},
    {[] { return single(0.1F); }, "22 3dcccccd"},
    {[] { return real(0.1); }, "23 3fb999999999999a"},
    {[] { return real(-0.0); }, "23 8000000000000000"},
    {[] { return date(0.5); }, "33 3fe0000000000000"},
    {[] { return dataOf(std::string_view("\0\xFF", 2)); }, "42 00ff"},
    {[] { return dataOf("0123456789abcde"); }, "4f 10 0f 303132333435363738396162636465"},
    {[] { return object(""); }, "50"},
    {[] { return object("\x1B~"); }, "52 1b7e"},
    {[] { return object("\u00E9"); }, "61 00e9"},
    {[] { return units(u"\xD83D\xDE00"); }, "62 d83d de00"},
    {[] { return units(u"a\xD83D"); }, "62 0061 d83d"},
    {[] {
       return dictionary({{object("CF$UID"), integer(7)}});
     },
     "80 07"},
    {[] {
       return dictionary({{object("CF$UID"), integer(258)}});
     },
     "81 0102"},
};

TEST_F(BinaryListsTest, EveryKindOfValue) {
  for (const Written& row : kWritten) {
    SCOPED_TRACE(row.bytes);
    const std::string bytes = bytesOf(row.bytes);
    const std::string file = fileOfDomain(dictionary({{object("a"), row.value()}}));
    EXPECT_EQ(hexadecimal(file.substr(13, bytes.size())), hexadecimal(bytes));
  }
}

TEST_F(BinaryListsTest, AListAndADictionaryReferToWhatIsInThem) {
  const std::string file = fileOfDomain(
      dictionary({{object("a"), list({object("a"), boolean(true), dictionary({}), list({})})}}));
  EXPECT_EQ(hexadecimal(file.substr(8, 15)),
            "d10102"
            "5161"
            "a401030405"
            "09"
            "d0"
            "a0"
            "08"
            "0b");
}

TEST_F(BinaryListsTest, OthersWhoAskForXmlGetIt) {
  const id xml = send<id, "dataFromPropertyList:format:errorDescription:">(
      classNamed<"NSPropertyListSerialization">(), list({}), kXmlFormat, static_cast<id*>(nullptr));
  EXPECT_EQ(bytesIn(xml).substr(0, 5), "<?xml");
}

TEST_F(BinaryListsTest, ManyValuesTakeWiderReferencesAndOffsets) {
  std::vector<id> elements;
  for (int i = 0; i < 70'000; ++i) elements.push_back(integer(i));
  const std::string file = fileOfDomain(dictionary({{object("a"), list(elements)}}));
  EXPECT_EQ(hexadecimal(file.substr(file.size() - 32, 16)),
            "000000000000040400000000000111"
            "73");
  EXPECT_EQ(literal(parsed(file)), literal(dictionary({{object("a"), list(elements)}})));
}

// --- what comes back

TEST_F(BinaryListsTest, ValuesThatLookTheSameStayApart) {
  EXPECT_EQ(
      comesBack(list({list({integer(1)}), list({boolean(true)}), list({real(1)}), list({single(1)}),
                      real(0), real(-0.0), object("\u00E9"), object("e\u0301")})),
      "((i 1), (c 1), (d 1), (f 1), d 0, d -0, \"\\00e9\", \"e\\0301\")");
}

TEST_F(BinaryListsTest, TextsOfEveryCharacter) {
  constexpr char32_t kAtOnce = 0x100;
  std::vector<std::u16string> texts;
  std::vector<std::pair<id, id>> entries;
  for (char32_t first = 0; first < 0x110000; first += kAtOnce) {
    std::u16string all;
    for (char32_t c = first; c < first + kAtOnce; ++c) {
      if (c >= 0x10000) all += static_cast<char16_t>(0xD7C0 + (c >> 10));
      all += static_cast<char16_t>(c >= 0x10000 ? 0xDC00 + (c & 0x3FF) : c);
    }
    texts.push_back(all);
    entries.emplace_back(units(all), units(all));
  }
  const id read = parsed(fileOfDomain(dictionary(entries)));
  EXPECT_EQ((send<NSUInteger, "count">(read)), texts.size());
  for (const std::u16string& text : texts)
    EXPECT_TRUE(unitsOf(send<id, "objectForKey:">(read, units(text))) == text)
        << static_cast<unsigned>(text.front());
}

TEST_F(BinaryListsTest, TextsWithHalfOfAPair) {
  EXPECT_EQ(comesBack(units(u"a\xD83D")), "\"a\\d83d\"");
  EXPECT_EQ(comesBack(units(u"\xDE00")), "\"\\de00\"");
  EXPECT_EQ(comesBack(dictionary({{units(u"\xD83D"), units(u"\xDE00\xD83D")}})),
            "{\"\\d83d\": \"\\de00\\d83d\"}");
}

TEST_F(BinaryListsTest, NumbersThatNoOtherNumberEquals) {
  EXPECT_EQ(comesBack(real(__builtin_nan(""))), "d nan");
  EXPECT_EQ(comesBack(list({real(__builtin_inf()), real(-__builtin_inf())})), "(d inf, d -inf)");
  EXPECT_EQ(comesBack(real(0.30000000000000004)), "d 0.30000000000000004");
  EXPECT_EQ(comesBack(real(1.7976931348623157e+308)), "d 1.7976931348623157e+308");
}

TEST_F(BinaryListsTest, DatesOfEveryAge) {
  for (const double seconds : {-1e300, -1e11, -63113904000.5, 1e12, 1e300, __builtin_inf()})
    EXPECT_EQ(comesBack(date(seconds)), literal(date(seconds)));
  EXPECT_EQ(comesBack(date(-63113904000.5)), "date -63113904000.5");
}

TEST_F(BinaryListsTest, AListThatStandsInSeveralPlacesIsInAllOfThem) {
  const id shared = list({object("x")});
  EXPECT_EQ(comesBack(list({shared, dictionary({{object("k"), shared}})})),
            R"((("x"), {"k": ("x")}))");
}

// --- what others write

TEST_F(BinaryListsTest, IntegersOfEverySize) {
  EXPECT_EQ(read({"10 ff"}), "i 255");
  EXPECT_EQ(read({"11 ffff"}), "i 65535");
  EXPECT_EQ(read({"12 7fffffff"}), "i 2147483647");
  EXPECT_EQ(read({"12 ffffffff"}), "q 4294967295");
  EXPECT_EQ(read({"13 ffffffff80000000"}), "i -2147483648");
  EXPECT_EQ(read({"13 7fffffffffffffff"}), "q 9223372036854775807");
  EXPECT_EQ(read({"13 8000000000000000"}), "q -9223372036854775808");
  EXPECT_EQ(read({"14 0000000000000000 8000000000000005"}), "Q 9223372036854775813");
  EXPECT_EQ(read({"14 0000000000000000 ffffffffffffffff"}), "Q 18446744073709551615");
  EXPECT_EQ(read({"14 0000000000000000 0000000000000005"}), "i 5");
  EXPECT_EQ(read({"14 ffffffffffffffff fffffffffffffffb"}), "i -5");
}

TEST_F(BinaryListsTest, ReferencesOfKeyedArchives) {
  EXPECT_EQ(read({"80 07"}), R"({"CF$UID": i 7})");
  EXPECT_EQ(read({"82 010000"}), R"({"CF$UID": i 65536})");
  EXPECT_EQ(read({"83 00010000"}), R"({"CF$UID": i 65536})");
  EXPECT_EQ(read({"87 8000000000000005"}), R"({"CF$UID": Q 9223372036854775813})");
}

TEST_F(BinaryListsTest, WideOffsetsAndReferences) {
  EXPECT_EQ(literal(parsed(fileOf({"a1 0000000000000001", "51 61"}, 8, 8))), "(\"a\")");
  EXPECT_EQ(literal(parsed(fileOf({"a1 01", "51 61"}, 8))), "(\"a\")");
}

TEST_F(BinaryListsTest, EmptyRoots) {
  EXPECT_EQ(read({"d0"}), "{}");
  EXPECT_EQ(read({"a0"}), "()");
  EXPECT_EQ(read({"50"}), "\"\"");
}

// A reader who may change what it gets still gets it from Foundation.
TEST_F(BinaryListsTest, MutableListsAreReadAsEver) {
  NSUInteger format = 0;
  const id read = send<id, "propertyListWithData:options:format:error:">(
      classNamed<"NSPropertyListSerialization">(), dataOf(fileOf({"a1 01", "51 61"})),
      NSUInteger{1}, &format, static_cast<id*>(nullptr));
  EXPECT_EQ(format, kBinaryFormat);
  send<void, "addObject:">(read, object("b"));
  EXPECT_EQ(literal(read), R"(("a", "b"))");
}

// --- damage

TEST_F(BinaryListsTest, WhatNobodyCanMeanIsDamage) {
  const std::vector<std::string> kDamaged[] = {
      {"00"},                                    // null
      {"0f"},                                    // nothing
      {"a1 00"},                                 // a list in itself
      {"a1 01", "a1 00"},                        // through another
      {"a1 05"},                                 // no such object
      {"a2 01", "50"},                           // ends too early
      {"5f 10 ff 61"},                           // likewise
      {"5f 13 ffffffffffffffff"},                // a length that can't be added to anything
      {"af 13 8000000000000000"},                //
      {"6f 13 8000000000000001 0061"},           //
      {"5f 23 0000000000000000"},                // a length that is no integer
      {"d1 01 02", "10 01", "51 61"},            // a key that is no text
      {"14 0000000000000001 0000000000000000"},  // 2^64
      {"15 00"},                                 // no such size
      {"24 00"},                                 //
      {"33 7ff8000000000000"},                   // a date that is no number
      {"c1 01", "50"},                           // a set
  };
  for (const std::vector<std::string>& objects : kDamaged)
    EXPECT_EQ(read(objects), "nil") << objects.front();
  EXPECT_EQ(literal(parsed("bplist00")), "nil");
}

TEST_F(BinaryListsTest, WhatCantBeWrittenIsAnErrorOfTheWriter) {
  id error = nullptr;
  const id written = send<id, "dataWithPropertyList:format:options:error:">(
      classNamed<"NSPropertyListSerialization">(), list({null()}), kBinaryFormat, NSUInteger{0},
      &error);
  EXPECT_EQ(written, nullptr);
  EXPECT_EQ(text(send<id, "localizedDescription">(error)), "it holds an object of class NSNull");
}

TEST_F(BinaryListsTest, DamageIsAnErrorOfTheReader) {
  id error = nullptr;
  send<id, "propertyListWithData:options:format:error:">(
      classNamed<"NSPropertyListSerialization">(), dataOf(fileOf({"00"})), NSUInteger{0},
      static_cast<NSUInteger*>(nullptr), &error);
  EXPECT_EQ(text(send<id, "localizedDescription">(error)), "the binary property list is damaged");
}

// Nothing is asked of it but to come to an end with a value or without.
TEST_F(BinaryListsTest, AnyByteMayBeDamaged) {
  const std::string whole =
      fileOf({"d3 01 02 03 04 05 06", "51 61", "51 62", "51 63", "a3 07 08 09", "62 d83d de00",
              "5f 10 03 61 62 63", "13 0000000100000000", "33 3fe0000000000000", "43 000102"});
  ASSERT_EQ(literal(parsed(whole)),
            R"({"a": (q 4294967296, date 0.5, <000102>), "b": "\d83d\de00", "c": "abc"})");
  for (std::size_t length = 8; length < whole.size(); ++length) {
    EXPECT_EQ(literal(parsed(whole.substr(0, length) + std::string(32, '\0'))), "nil") << length;
  }
  int read = 0;
  for (std::size_t at = 8; at < whole.size(); ++at) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string damaged = whole;
      damaged[at] = static_cast<char>(byte);
      if (parsed(damaged) != nullptr) ++read;
    }
  }
  EXPECT_GT(read, 1000);
}

TEST_F(BinaryListsTest, NestingHasABound) {
  EXPECT_EQ(literal(parsed(fileOf(nestedObjects(0, 257), 2, 2))).size(), 2 * 257 + 2);
  EXPECT_EQ(parsed(fileOf(nestedObjects(0, 258), 2, 2)), nullptr);
  EXPECT_EQ(parsed(fileOf(nestedObjects(0, 20'000), 3, 2)), nullptr);
}

// The list that is read first, and is no deeper than others, stands within the others too.
TEST_F(BinaryListsTest, NestingHasABoundAlsoForWhatStandsInSeveralPlaces) {
  const auto file = [](std::size_t outer) {
    std::vector<std::string> objects = {"a2 0001 00ca"};
    for (const std::string& object : nestedObjects(1, 200)) objects.push_back(object);  // to 0x00c9
    for (const std::string& object : nestedObjects(0x00CA, outer)) objects.push_back(object);
    objects.back() = "a1 0001";
    return fileOf(objects, 2, 2);
  };
  EXPECT_NE(parsed(file(55)), nullptr);
  EXPECT_EQ(parsed(file(56)), nullptr);
}

}  // namespace
}  // namespace native_test
