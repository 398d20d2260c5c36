// The choice of the messenger, held against the calling conventions that Foundation is built for.
// There is nothing to run here: what is wrong doesn't compile.
#include "native/geometry.h"
#include "native/objc.h"

namespace zel {
namespace {

template <class Result>
constexpr bool isSentBy(Messenger* expected) {
  return messenger<Result>() == expected;
}

static_assert(isSentBy<void>(objc_msgSend));
static_assert(isSentBy<id>(objc_msgSend));
static_assert(isSentBy<BOOL>(objc_msgSend));
static_assert(isSentBy<long long>(objc_msgSend));
static_assert(isSentBy<NSRange>(objc_msgSend));
static_assert(isSentBy<NSPoint>(objc_msgSend));
static_assert(isSentBy<NSSize>(objc_msgSend));

#if defined(__i386__)
template <std::size_t Size>
struct Bytes {
  char bytes[Size];
};

static_assert(isSentBy<float>(objc_msgSend_fpret));
static_assert(isSentBy<double>(objc_msgSend_fpret));
static_assert(isSentBy<Bytes<1>>(objc_msgSend));
static_assert(isSentBy<Bytes<2>>(objc_msgSend));
static_assert(isSentBy<Bytes<3>>(objc_msgSend_stret));
static_assert(isSentBy<Bytes<4>>(objc_msgSend));
static_assert(isSentBy<Bytes<5>>(objc_msgSend_stret));
static_assert(isSentBy<Bytes<8>>(objc_msgSend));
static_assert(isSentBy<Bytes<12>>(objc_msgSend_stret));
static_assert(isSentBy<NSRect>(objc_msgSend_stret));
#elif defined(__x86_64__)
static_assert(isSentBy<double>(objc_msgSend));
static_assert(isSentBy<NSRect>(objc_msgSend_stret));
#else
static_assert(isSentBy<double>(objc_msgSend));
static_assert(isSentBy<NSRect>(objc_msgSend));
#endif

}  // namespace
}  // namespace zel
