#include "macho/loader/bindings.h"

#include <cstdlib>
#include <gtest/gtest.h>

#include "macho/loader/passages.h"

namespace tests {
namespace {

using macho::bindingOf;

TEST(BindingsTest, ASymbolHasOneBinding) {
  EXPECT_EQ(bindingOf("_free"), reinterpret_cast<void*>(std::free));
  EXPECT_NE(bindingOf("_CFRelease"), nullptr);
  EXPECT_EQ(bindingOf("_CFRelease"), bindingOf("_CFRelease"));
  EXPECT_NE(bindingOf("_CFRelease"), bindingOf("_CFRetain"));
}

TEST(BindingsTest, OtherSymbolsHaveNone) {
  for (const char* symbol : {"", "free", "_Free", "_printf", "_objc_msgSendSuper"})
    EXPECT_EQ(bindingOf(symbol), nullptr) << symbol;
}

}  // namespace
}  // namespace tests
