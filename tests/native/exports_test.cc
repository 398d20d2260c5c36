#include "tests/native/support.h"

namespace native_test {
namespace {

class ExportsTest : public NativeTest {};

TEST_F(ExportsTest, LibraryExportsItsFunctionsAndNothingElse) {
  const std::string listed =
      outputOf(ZEL_NM, {"nm", "-D", "--defined-only", "--format=just-symbols", ZEL_NATIVE_LIBRARY});
  EXPECT_EQ(listed,
            "CFDictionaryCreateMutable\n"
            "CFDictionaryGetValue\n"
            "CFDictionaryRemoveValue\n"
            "CFDictionarySetValue\n"
            "CFRelease\n"
            "CFRetain\n"
            "CFStringCreateWithCString\n"
            "CFStringCreateWithCharacters\n"
            "CFStringGetCString\n"
            "CFStringGetLength\n"
            "CFURLCreateWithString\n"
            "zelCatch\n"
            "zelFinally\n"
            "zelFoundationConstant\n");
}

}  // namespace
}  // namespace native_test
