// Messages with results of every kind, to a class of the test.
#include "native/geometry.h"
#include "tests/macho/loader/sample/sample.h"

namespace sample {
namespace {

zel::Class* target() { return zel::classNamed<"LoaderSample">(); }

struct OneByte {
  std::uint8_t a;
};
struct TwoBytes {
  std::uint8_t a;
  std::uint8_t b;
};
struct FourBytes {
  std::uint16_t a;
  std::uint16_t b;
};
struct ThreeBytes {
  std::uint8_t a;
  std::uint8_t b;
  std::uint8_t c;
};

// Read as whole registers, so that what isn't extended shows.
void reportNarrowNumbers() {
  reportNumber("char %lld", zel::send<std::int32_t, "signedChar">(target()));
  reportNumber("unsigned char %lld", zel::send<std::int32_t, "unsignedChar">(target()));
  reportNumber("bool %lld", zel::send<std::int32_t, "boolean">(target()));
  reportNumber("short %lld", zel::send<std::int32_t, "signedShort">(target()));
  reportNumber("unsigned short %lld", zel::send<std::int32_t, "unsignedShort">(target()));
}

void reportWideNumbers() {
  reportNumber("int %lld", zel::send<std::int32_t, "integer">(target()));
  reportNumber("long long %lld", zel::send<std::int64_t, "longLong">(target()));
  reportNumber("float %lld", static_cast<long long>(zel::send<float, "single">(target()) * 8));
  reportNumber("double %lld", static_cast<long long>(zel::send<double, "real">(target()) * 8));
}

void reportSmallStructures() {
  reportNumber("one %lld", zel::send<OneByte, "oneByte">(target()).a);
  const auto two = zel::send<TwoBytes, "twoBytes">(target());
  reportNumber("two %lld", two.a * 1000 + two.b);
  const auto four = zel::send<FourBytes, "fourBytes">(target());
  reportNumber("four %lld", four.a * 100000LL + four.b);
  const auto range = zel::send<zel::NSRange, "range">(target());
  reportNumber("location %lld", static_cast<long long>(range.location));
  reportNumber("length %lld", static_cast<long long>(range.length));
}

void reportLargeStructures() {
  struct {
    std::uint32_t before = 0x11111111;
    ThreeBytes three{};
    std::uint8_t after = 0x22;
  } guarded;
  guarded.three = zel::send<ThreeBytes, "threeBytes">(target());
  reportNumber("three %llx", guarded.three.a << 16 | guarded.three.b << 8 | guarded.three.c);
  reportNumber("after %llx", guarded.after);
  const auto rect = zel::send<zel::NSRect, "rect">(target());
  reportNumber("x %lld", static_cast<long long>(rect.origin.x * 8));
  reportNumber("height %lld", static_cast<long long>(rect.size.height * 8));
}

void reportNil() {
  zel::Object* const nil = nullptr;
  const zel::SEL selector = zel::selector<"anything">();
  reportNumber("int %lld", zel::methodOf<std::int32_t>(nil, selector)(nil, selector));
  reportNumber("long long %lld", zel::methodOf<std::int64_t>(nil, selector)(nil, selector));
  reportNumber("double %lld",
               static_cast<long long>(zel::methodOf<double>(nil, selector)(nil, selector)));
  zel::methodOf<zel::NSRect>(nil, selector)(nil, selector);
  report("a structure");
}

// Sent as what they aren't, so the wrong messenger sends them.
void sendFloatAsInteger() { zel::send<std::int32_t, "single">(target()); }
void sendDoubleAsInteger() { zel::send<std::int64_t, "real">(target()); }
void sendIntegerAsDouble() { zel::send<double, "integer">(target()); }
void sendStructureAsDouble() { zel::send<double, "range">(target()); }

// More words than any method of Foundation takes.
void reportArguments() {
  reportNumber("sum %lld", zel::send<std::int64_t, "sum">(target(), std::int64_t{1} << 40, 0.5, 1,
                                                          2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13,
                                                          14, 15, 16, 17, 18, 19, 20, 2.5));
  reportNumber("rect %lld", zel::send<std::int32_t, "widthOf:">(
                                target(), zel::NSRect{{1.0F, 2.0F}, {30.0F, 4.0F}}));
}

}  // namespace

const Case kMessageCases[] = {{"narrow numbers", reportNarrowNumbers},
                              {"wide numbers", reportWideNumbers},
                              {"small structures", reportSmallStructures},
                              {"large structures", reportLargeStructures},
                              {"nil", reportNil},
                              {"arguments", reportArguments},
                              {"float as integer", sendFloatAsInteger},
                              {"double as integer", sendDoubleAsInteger},
                              {"integer as double", sendIntegerAsDouble},
                              {"structure as double", sendStructureAsDouble},
                              {nullptr, nullptr}};

}  // namespace sample
