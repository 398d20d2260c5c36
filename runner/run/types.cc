#include "runner/run/types.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "runner/run/values.h"
#include "runner/text/text.h"

namespace runner {
namespace {

constexpr std::int32_t kOfObjects = host::kArrayType + host::kObjectType;

Value noValue() { return {}; }
Value noObject() { return ObjectRef(); }
Value noText() { return std::string(); }
Value noMoney() { return host::Currency(); }
Value black() { return host::Color(); }
Value isFalse() { return booleanValue(false); }
template <class Number>
Value zero() {
  return Number{};
}
template <class Number>
Value convertTo(const Value& value) {
  return numberOf<Number>(value);
}
// Integers below 32 bits are values of 32 bits that have been cut.
template <class Small>
Value cutTo(const Value& value) {
  return std::int32_t{numberOf<Small>(value)};
}

// A row of the table below, which both its type and arrays of it are made of.
struct SimpleType {
  Simple simple;
  Kind kind;
  std::string_view name;
  std::string_view arrayName;
  std::int32_t elementCode;
  int room;
  NumberConversion convert;
  Value (*initial)();
};

template <class Number>
constexpr SimpleType number(Simple simple, Kind kind, std::string_view name,
                            std::string_view arrayName, std::int32_t elementCode, int room) {
  return {simple, kind, name, arrayName, elementCode, room, convertTo<Number>, zero<Number>};
}

template <class Small>
constexpr SimpleType small(Simple simple, Kind kind, std::string_view name,
                           std::string_view arrayName, int room) {
  return {simple, kind, name, arrayName, host::kInt32Type, room, cutTo<Small>, zero<int32_t>};
}

// As Simple counts. Numbers have more room from row to row.
constexpr SimpleType kSimpleTypes[] = {
    {Simple::nothing, Kind::nothing, "nothing", "", host::kObjectType, 0, nullptr, noValue},
    {Simple::nil, Kind::nil, "Nil", "", host::kObjectType, 0, nullptr, noObject},
    {Simple::boolean, Kind::boolean, "Boolean", "Boolean()", host::kBooleanType, 0, nullptr,
     isFalse},
    small<std::int8_t>(Simple::int8, Kind::int8, "Int8", "Int8()", 1),
    small<std::uint8_t>(Simple::uint8, Kind::uint8, "UInt8", "UInt8()", 2),
    small<std::int16_t>(Simple::int16, Kind::int16, "Int16", "Int16()", 3),
    small<std::uint16_t>(Simple::uint16, Kind::uint16, "UInt16", "UInt16()", 4),
    number<std::int32_t>(Simple::int32, Kind::int32, "Integer", "Integer()", host::kInt32Type, 5),
    number<std::uint32_t>(Simple::uint32, Kind::uint32, "UInt32", "UInt32()", host::kObjectType, 6),
    number<std::int64_t>(Simple::int64, Kind::int64, "Int64", "Int64()", host::kInt64Type, 7),
    number<std::uint64_t>(Simple::uint64, Kind::uint64, "UInt64", "UInt64()", host::kObjectType, 8),
    number<float>(Simple::single, Kind::single, "Single", "Single()", host::kSingleType, 10),
    number<double>(Simple::real, Kind::real, "Double", "Double()", host::kDoubleType, 11),
    {Simple::currency, Kind::currency, "Currency", "Currency()", host::kObjectType, 9,
     convertToCurrency, noMoney},
    {Simple::color, Kind::color, "Color", "Color()", host::kObjectType, 0, nullptr, black},
    {Simple::text, Kind::text, "String", "String()", host::kStringType, 0, nullptr, noText},
    {Simple::variant, Kind::variant, "Variant", "Variant()", host::kObjectType, 0, nullptr,
     noValue},
    {Simple::object, Kind::object, "Object", "Object()", host::kObjectType, 0, nullptr, noObject},
    {Simple::date, Kind::object, "Date", "Date()", host::kDateType, 0, nullptr, noObject},
    {Simple::exception, Kind::object, "RuntimeException", "RuntimeException()", host::kObjectType,
     0, nullptr, noObject},
    {Simple::memoryBlock, Kind::object, "MemoryBlock", "MemoryBlock()", host::kObjectType, 0,
     nullptr, noObject},
};

constexpr bool areInOrder() {
  for (std::size_t i = 0; i < kSimpleCount; ++i)
    if (static_cast<std::size_t>(kSimpleTypes[i].simple) != i) return false;
  return std::size(kSimpleTypes) == kSimpleCount;
}
static_assert(areInOrder());

extern const std::array<TypeRow, kSimpleCount> kArrayRows;

constexpr TypeRow row(std::size_t i) {
  const SimpleType& simple = kSimpleTypes[i];
  return {simple.kind,   simple.name,
          nullptr,       simple.arrayName.empty() ? nullptr : &kArrayRows[i],
          nullptr,       host::kArrayType + simple.elementCode,
          simple.room,   simple.convert,
          simple.initial};
}
constexpr TypeRow arrayRow(std::size_t i) {
  const SimpleType& simple = kSimpleTypes[i];
  return {simple.kind, simple.arrayName, &kSimpleRows[i], nullptr, nullptr, kOfObjects,
          0,           nullptr,          noObject};
}

template <std::size_t... i>
constexpr std::array<TypeRow, kSimpleCount> rows(TypeRow (*make)(std::size_t),
                                                 std::index_sequence<i...> /*all*/) {
  return {make(i)...};
}
constexpr auto kAll = std::make_index_sequence<kSimpleCount>();

constinit const std::array<TypeRow, kSimpleCount> kArrayRows = rows(arrayRow, kAll);

// Names that mean a type which has another one.
struct Alias {
  std::string_view name;
  Type type;
};
constexpr Alias kAliases[] = {{"Int32", kInteger}, {"Byte", kUInt8}, {"UInteger", kUInt32}};

// Distances; what is nearer is preferred among overloads.
constexpr int kSame = 0;
constexpr int kNear = 1;
constexpr int kWider = 2;
constexpr int kNarrower = 20;
constexpr int kConverted = 30;
constexpr int kToVariant = 40;
constexpr int kFromVariant = 50;

int numberDistance(Type from, Type to) {
  constexpr int kKindsOfNumbers = 11;
  const int steps = to->room - from->room;
  // A Single is nearer to an integer than nothing, but a Double has all of them.
  if (steps > 0 && to == kSingle) return kWider + kKindsOfNumbers;
  return steps > 0 ? kWider + steps : kNarrower - steps;
}

std::optional<int> objectDistance(Type from, Type to) {
  if (to == kAnyObject && (from.isArray() || from.isObject())) return kConverted;
  if (from.isArray() || to.isArray()) return std::nullopt;
  if ((from == kString && to == kMemoryBlock) || (from == kMemoryBlock && to == kString))
    return kConverted;
  if (!from.isObject() || !to.isObject()) return std::nullopt;
  int steps = kNear;
  for (const TypeRow* above = from->superClass; above != nullptr; above = above->superClass) {
    if (Type(above) == to) return steps;
    ++steps;
  }
  return std::nullopt;
}

}  // namespace

constinit const std::array<TypeRow, kSimpleCount> kSimpleRows = rows(row, kAll);

bool Type::isReference() const {
  return isArray() || row_->kind == Kind::object || row_->kind == Kind::variant ||
         row_->kind == Kind::nil;
}

bool Type::isA(Type other) const {
  if (other == kAnyObject) return true;
  for (const TypeRow* row = row_; row != nullptr; row = row->superClass)
    if (Type(row) == other) return true;
  return false;
}

Type arrayType(std::int32_t code) {
  for (const TypeRow& row : kSimpleRows) {
    if (row.arrayCode == code && code != kOfObjects && row.kind >= Kind::int32)
      return Type(row.array);
  }
  return kVariant.arrayOf();
}

std::optional<int> distance(Type from, Type to) {
  if (from == to) return from.isNothing() ? std::nullopt : std::optional(kSame);
  if (from.isNothing() || to.isNothing()) return std::nullopt;
  if (from.isNumber() && to.isNumber()) return numberDistance(from, to);
  if (to == kVariant) return kToVariant;
  if (from == kNil) return to.isReference() ? std::optional(kNear) : std::nullopt;
  if (from == kVariant) return kFromVariant;
  return objectDistance(from, to);
}

Type commonNumber(Type left, Type right) {
  if (left == right && left->room >= kInteger->room && left != kUInt32) return left;
  const bool isMoney = left == kCurrency || right == kCurrency;
  const auto isExact = [](Type type) { return type == kCurrency || type.isInteger(); };
  if (isMoney && isExact(left) && isExact(right)) return kCurrency;
  if (!left.isInteger() || !right.isInteger()) return kDouble;
  if (left == kUInt64 || right == kUInt64) return kUInt64;
  const bool narrow = left->room <= kInteger->room && right->room <= kInteger->room;
  return narrow ? kInteger : kInt64;
}

// --- by name

Types::Types(host::Host& host) : host_(host) {
  for (const TypeRow& row : kSimpleRows)
    if (row.array != nullptr) add(std::string(row.name), Type(&row));
  for (const Alias& alias : kAliases) add(std::string(alias.name), alias.type);
  for (const std::string& name : host.classNames()) enter(*host.findClass(name));
}

void Types::add(const std::string& name, Type type) {
  if (byKey_.insert_or_assign(folded(name), type).second) names_.push_back(name);
}

Type Types::enter(const host::RegisteredClass& known) {
  const std::string key = folded(known.name);
  if (const auto found = byKey_.find(key); found != byKey_.end())
    return byClass_[&known] = found->second;
  const TypeRow* super = nullptr;
  if (const auto* const above = host_.findClass(known.superName); above != nullptr)
    super = enter(*above).operator->();
  ClassRows& rows = newRows(known.name, Kind::object, noObject);
  rows.row.superClass = super;
  const Type type(&rows.row);
  add(known.name, type);
  return byClass_[&known] = type;
}

Types::ClassRows& Types::newRows(const std::string& name, Kind kind, Value (*initial)()) {
  auto rows = std::make_unique<ClassRows>();
  rows->name = name;
  rows->arrayName = name + "()";
  const bool isObject = kind == Kind::object;
  const std::int32_t code = isObject ? kOfObjects : host::kArrayType + host::kInt32Type;
  rows->row = {kind, rows->name, nullptr, &rows->array, nullptr, code, 0, nullptr, initial};
  rows->array = {kind, rows->arrayName, &rows->row, nullptr, nullptr, kOfObjects,
                 0,    nullptr,         noObject};
  const TypeRow* const row = &rows->row;
  return *(rows_[row] = std::move(rows));
}

Type Types::declareClass(const std::string& name) {
  return Type(&newRows(name, Kind::object, noObject).row);
}

void Types::setSuper(Type declared, std::optional<Type> super, const ProgramClass& own) {
  TypeRow& row = rows_.at(declared.operator->())->row;
  row.superClass = super ? super->operator->() : nullptr;
  row.own = &own;
}

Type Types::declareEnum(const std::string& name) {
  return Type(&newRows(name, Kind::enumeration, zero<std::int32_t>).row);
}

void Types::establish(Type declared) { byClass_[host_.findClass(declared.name())] = declared; }

std::optional<Type> Types::find(const std::string& key) const {
  const auto found = byKey_.find(key);
  return found == byKey_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<Type> Types::find(const host::Type& written) const {
  const std::optional<Type> found = find(folded(written.name));
  return found && written.array ? found->arrayOf() : found;
}

Type Types::of(const host::RegisteredClass& known) const {
  const auto found = byClass_.find(&known);
  return found == byClass_.end() ? kAnyObject : found->second;
}

Type Types::addClass(const std::string& name, const std::string& superName) {
  if (host_.findClass(name) == nullptr) host_.addClass(name, superName);
  return enter(*host_.findClass(name));
}

}  // namespace runner
