#include "bench/roads.h"

#include <cstddef>
#include <cstring>
#include <iterator>
#include <string>
#include <type_traits>

#include "bench/direct.h"
#include "bench/plugin_side.h"

namespace bench {
namespace {

LeanString text(const char* bytes) {
  return {bytes, static_cast<std::int32_t>(std::strlen(bytes))};
}

// What is read must not be optimised away.
template <class Value>
void keep(Value value) {
  asm volatile("" : : "g"(value) : "memory");
}

// --- what is read and stored

LeanString integerKey = text("launchCount");
LeanString floatKey = text("zoomFactor");
LeanString doubleKey = text("lastPosition");
LeanString boolKey = text("showsToolbar");
LeanString textKey = text("lastDocument");
LeanString urlKey = text("homePage");
LeanString dataKey = text("windowIcon");
LeanString dateKey = text("lastOpened");
LeanString fileKey = text("recentFolder");
LeanString listKey = text("measuredList");
LeanString writtenKey = text("written");
LeanString absentKey = text("absent");
LeanString domainName = text("measured.domain");
LeanString volatileName = text("measured.volatile");

LeanObject* dateOf(std::int32_t second) {
  static constexpr const char* kFields[] = {"Year", "Month", "Day", "Hour", "Minute", "Second"};
  const std::int32_t values[] = {2024, 2, 29, 23, 59, second};
  LeanObject* const date = leanNewInstance("Date");
  for (std::size_t i = 0; i < std::size(values); ++i) leanSetInteger(date, kFields[i], values[i]);
  return leanVariantOfDate(date);
}

LeanObject* blockOf(char byte) {
  constexpr std::int32_t kSize = 256;
  LeanObject* const block = leanNewBlock(kSize);
  std::memset(leanBlockBytes(block), byte, kSize);
  return block;
}

// --- by turns, so that every store changes something

unsigned turn = 0;
unsigned next() { return ++turn & 1U; }

// --- large values, of alternating texts and integers

// Of which one is stored by turns; the second has one entry more.
LeanObject* large[2];

LeanString* textOf(std::int32_t number) {
  const std::string bytes = "text number " + std::to_string(number);
  return leanBuildString(bytes.data(), static_cast<std::int32_t>(bytes.size()));
}

LeanObject* variantOf(std::int32_t number) {
  return number % 2 == 0 ? leanVariantOfInt32(number) : leanVariantOfString(textOf(number));
}

LeanObject* stringsOf(std::int32_t entries) {
  LeanObject* const array = leanNewArray(kLeanStrings, -1);
  const LeanInsert insert = leanInsertProcedure(array);
  for (std::int32_t i = 0; i < entries; ++i) insert(array, i, textOf(i));
  return array;
}

LeanObject* variantsOf(std::int32_t entries) {
  LeanObject* const array = leanNewArray(kLeanObjects, -1);
  const LeanInsert insert = leanInsertProcedure(array);
  for (std::int32_t i = 0; i < entries; ++i) insert(array, i, variantOf(i));
  return array;
}

void add(LeanObject* dictionary, LeanString* key, LeanObject* value) {
  const auto setEntry = reinterpret_cast<LeanSetEntry>(
      leanLoadObjectMethod(dictionary, "Value(key As Variant, Assigns _value As Variant)"));
  setEntry(dictionary, leanVariantOfString(key), value);
}

LeanObject* dictionaryOf(std::int32_t entries) {
  LeanObject* const dictionary = leanNewInstance("Dictionary");
  for (std::int32_t i = 0; i < entries; ++i) add(dictionary, textOf(i), variantOf(i));
  return dictionary;
}

// Dictionaries in each other.
LeanObject* nestOf(std::int32_t levels) {
  LeanObject* inner = leanVariantOfInt32(1);
  for (std::int32_t i = 0; i < levels; ++i) {
    LeanObject* const outer = leanNewInstance("Dictionary");
    add(outer, textOf(i), inner);
    inner = outer;
  }
  return inner;
}

template <LeanObject* (*Make)(std::int32_t), void (*Store)(LeanString*, LeanObject*)>
void stored(std::int32_t entries) {
  Store(&listKey, Make(entries));
}

template <LeanObject* (*Make)(std::int32_t)>
void made(std::int32_t entries) {
  large[0] = Make(entries);
  large[1] = Make(entries + 1);
}

void domain(std::int32_t entries) { directSetPersistentDomain(dictionaryOf(entries), &domainName); }

void volatileDomain(std::int32_t entries) {
  directRemoveVolatileDomain(&volatileName);
  directSetVolatileDomain(dictionaryOf(entries), &volatileName);
}

// --- single values, stored by turns

constexpr std::int32_t kIntegers[] = {41, 42};
constexpr float kFloats[] = {1.25F, 2.5F};
constexpr double kDoubles[] = {1.25, 2.5};
constexpr std::int8_t kBools[] = {0, 1};
LeanString textValues[] = {text("a document of last week.txt"), text("a document of today.txt")};
LeanString urlValues[] = {text("http://example.org/one"), text("http://example.org/two")};
LeanString* texts[] = {&textValues[0], &textValues[1]};
LeanString* urls[] = {&urlValues[0], &urlValues[1]};
LeanObject* blocks[2];
LeanObject* files[2];
LeanObject* integerVariants[2];
LeanObject* textVariants[2];
LeanObject* dateVariants[2];

void makeValues() {
  for (std::int32_t i = 0; i < 2; ++i) {
    blocks[i] = blockOf(static_cast<char>('a' + i));
    integerVariants[i] = leanVariantOfInt32(i);
    textVariants[i] = leanVariantOfString(texts[i]);
    dateVariants[i] = dateOf(i);
  }
  files[0] = leanItemAt("/usr/bin");
  files[1] = leanItemAt("/usr/lib");
}

// --- the roads

constexpr Bound added(double most) { return {Bound::Kind::added, most}; }
constexpr Bound ratio(double most) { return {Bound::Kind::ratio, most}; }
constexpr Bound kNoBound = {};

// A value of the lean host as the type of handle that the method takes.
template <class Wanted, class Value>
Wanted argument(Value value) {
  if constexpr (std::is_pointer_v<Wanted>) {
    return reinterpret_cast<Wanted>(value);
  } else {
    return value;
  }
}

zel::REALstring handle(LeanString& string) { return argument<zel::REALstring>(&string); }

template <class Value>
void store(void (*method)(zel::REALobject, zel::REALstring, Value), LeanString& key, auto value) {
  method(standardDefaults(), handle(key), argument<Value>(value));
}

// What takes a key and gives a value.
template <auto Direct, auto Method, LeanString& Key>
constexpr Road reading(const char* family, const char* name, Bound bound) {
  return {family,
          name,
          1,
          bound,
          nullptr,
          [] { keep(Direct(&Key)); },
          [] { keep((plugin.*Method)(standardDefaults(), handle(Key))); }};
}

// What stores one of two values.
template <auto Direct, auto Method, auto& Values>
constexpr Road storing(const char* family, const char* name, Bound bound) {
  return {family,
          name,
          1,
          bound,
          nullptr,
          [] { Direct(&writtenKey, Values[next()]); },
          [] { store(plugin.*Method, writtenKey, Values[next()]); }};
}

// A large value out of the store.
template <auto Direct, auto Method, LeanObject* (*Make)(std::int32_t), auto Store>
constexpr Road bringing(const char* name, std::int32_t entries, Bound bound) {
  return {"large values",
          name,
          entries,
          bound,
          stored<Make, Store>,
          [] { keep(Direct(&listKey)); },
          [] { keep((plugin.*Method)(standardDefaults(), handle(listKey))); }};
}

// A large value into the store.
template <auto Direct, auto Method, LeanObject* (*Make)(std::int32_t)>
constexpr Road taking(const char* name, std::int32_t entries, Bound bound) {
  return {"large values",
          name,
          entries,
          bound,
          made<Make>,
          [] { Direct(&listKey, large[next()]); },
          [] { store(plugin.*Method, listKey, large[next()]); }};
}

constexpr std::int32_t kMany = 1000;
constexpr std::int32_t kLevels = 100;
constexpr std::int32_t kDomain = 100;

constexpr Road kRoads[] = {
    reading<directInteger, &Methods::integerForKey, integerKey>("scalars", "integer read",
                                                                added(52)),
    reading<directFloat, &Methods::floatForKey, floatKey>("scalars", "float read", added(52)),
    reading<directBool, &Methods::boolForKey, boolKey>("scalars", "bool read", added(52)),
    reading<directDouble, &Methods::doubleForKey, doubleKey>("scalars", "double read", added(155)),
    reading<directString, &Methods::stringForKey, textKey>("texts", "string read", added(-78)),
    reading<directURL, &Methods::URLForKey, urlKey>("texts", "URL read", kNoBound),
    reading<directVariant, &Methods::objectForKey, integerKey>("variants", "variant read, integer",
                                                               added(-280)),
    reading<directVariant, &Methods::objectForKey, textKey>("variants", "variant read, text",
                                                            added(-228)),
    reading<directVariant, &Methods::objectForKey, dateKey>("variants", "variant read, date",
                                                            kNoBound),
    reading<directData, &Methods::dataForKey, dataKey>("data and files", "data read", kNoBound),
    reading<directFile, &Methods::fileForKey, fileKey>("data and files", "file read", added(0)),
    // Here, where the store has no large values yet.
    {"the store", "dictionaryRepresentation", 1, ratio(0.85), nullptr,
     [] { keep(directRepresentation()); },
     [] { keep(plugin.dictionaryRepresentation(standardDefaults())); }},

    storing<directSetInteger, &Methods::setIntegerForKey, kIntegers>("scalars", "integer store",
                                                                     added(54)),
    storing<directSetFloat, &Methods::setFloatForKey, kFloats>("scalars", "float store", added(54)),
    storing<directSetBool, &Methods::setBoolForKey, kBools>("scalars", "bool store", added(54)),
    storing<directSetDouble, &Methods::setDoubleForKey, kDoubles>("scalars", "double store",
                                                                  added(157)),
    storing<directSetString, &Methods::setStringForKey, texts>("texts", "string store", added(65)),
    storing<directSetURL, &Methods::setURLForKey, urls>("texts", "URL store", added(0)),
    storing<directSetVariant, &Methods::setObjectForKey, integerVariants>(
        "variants", "variant store, integer", added(79)),
    storing<directSetVariant, &Methods::setObjectForKey, textVariants>(
        "variants", "variant store, text", added(145)),
    storing<directSetVariant, &Methods::setObjectForKey, dateVariants>(
        "variants", "variant store, date", added(194)),
    storing<directSetData, &Methods::setDataForKey, blocks>("data and files", "data store",
                                                            added(0)),
    storing<directSetFile, &Methods::setFileForKey, files>("data and files", "file store",
                                                           added(0)),

    taking<directSetStringArray, &Methods::setStringArrayForKey, stringsOf>("strings in", kMany,
                                                                            ratio(1.02)),
    taking<directSetArray, &Methods::setArrayForKey, variantsOf>("variants in", kMany, ratio(1.02)),
    taking<directSetDictionary, &Methods::setDictionaryForKey, dictionaryOf>("dictionary in", kMany,
                                                                             ratio(1.02)),
    bringing<directStringArray, &Methods::stringArrayForKey, stringsOf, directSetStringArray>(
        "strings out", kMany, ratio(0.95)),
    bringing<directArray, &Methods::arrayForKey, variantsOf, directSetArray>("variants out", kMany,
                                                                             ratio(0.60)),
    bringing<directDictionary, &Methods::dictionaryForKey, dictionaryOf, directSetDictionary>(
        "dictionary out", kMany, ratio(0.71)),
    taking<directSetDictionary, &Methods::setDictionaryForKey, nestOf>("nested dictionaries in",
                                                                       kLevels, kNoBound),
    bringing<directDictionary, &Methods::dictionaryForKey, nestOf, directSetDictionary>(
        "nested dictionaries out", kLevels, kNoBound),

    {"the store", "persistentDomainForName", kDomain, ratio(0.80), domain,
     [] { keep(directPersistentDomain(&domainName)); },
     [] { keep(plugin.persistentDomainForName(standardDefaults(), handle(domainName))); }},
    {"the store", "setPersistentDomain", kDomain, kNoBound, made<dictionaryOf>,
     [] { directSetPersistentDomain(large[next()], &domainName); },
     [] {
       plugin.setPersistentDomain(standardDefaults(), argument<zel::REALdictionary>(large[next()]),
                                  handle(domainName));
     }},
    {"the store", "volatileDomainForName", kDomain, kNoBound, volatileDomain,
     [] { keep(directVolatileDomain(&volatileName)); },
     [] { keep(plugin.volatileDomainForName(standardDefaults(), handle(volatileName))); }},
    {"the store", "persistentDomainNames", 1, kNoBound, nullptr,
     [] { keep(directPersistentNames()); },
     [] { keep(plugin.persistentDomainNames(standardDefaults())); }},
    {"the store", "registerDefaults", kDomain, kNoBound, made<dictionaryOf>,
     [] { directRegister(large[next()]); },
     [] {
       plugin.registerDefaults(standardDefaults(), argument<zel::REALdictionary>(large[next()]));
     }},
    reading<directIsForced, &Methods::objectIsForcedForKey, integerKey>(
        "the store", "objectIsForcedForKey", kNoBound),
    {"the store", "removeObjectForKey, absent", 1, kNoBound, nullptr,
     [] { directRemove(&absentKey); },
     [] { plugin.removeObjectForKey(standardDefaults(), handle(absentKey)); }},
    {"the store", "synchronize, nothing to write", 1, kNoBound, nullptr,
     [] { keep(directSynchronize()); }, [] { keep(plugin.synchronize(standardDefaults())); }},
};

}  // namespace

std::span<const Road> roads() { return kRoads; }

void readFirst(bool throughPlugin) {
  if (throughPlugin) {
    keep(plugin.integerForKey(standardDefaults(), handle(absentKey)));
  } else {
    keep(directInteger(&absentKey));
  }
}

void prepareStore() {
  void* const pool = directOpenPool();
  directPrepare();
  standardDefaults();
  makeValues();
  directSetInteger(&integerKey, 42);
  directSetFloat(&floatKey, 1.25F);
  directSetDouble(&doubleKey, 0.125);
  directSetBool(&boolKey, 1);
  directSetString(&textKey, &textValues[0]);
  directSetURL(&urlKey, &urlValues[0]);
  directSetVariant(&dateKey, dateVariants[0]);
  directSetData(&dataKey, blocks[0]);
  directSetFile(&fileKey, files[0]);
  directSynchronize();
  directDrainPool(pool);
}

}  // namespace bench
