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
            "CFStringCreateMutableCopy\n"
            "CFStringCreateWithCString\n"
            "CFStringCreateWithCharacters\n"
            "CFStringGetCString\n"
            "CFStringGetCharacters\n"
            "CFStringGetLength\n"
            "CFStringNormalize\n"
            "CFURLCopyLastPathComponent\n"
            "CFURLCreateCopyAppendingPathComponent\n"
            "CFURLCreateCopyDeletingLastPathComponent\n"
            "CFURLCreateFromFSRef\n"
            "CFURLCreateWithString\n"
            "CFURLGetFSRef\n"
            "FSGetCatalogInfo\n"
            "FSPathMakeRef\n"
            "FSRefMakePath\n"
            "FSpMakeFSRef\n"
            "zelCatch\n"
            "zelFinally\n"
            "zelFoundationConstant\n"
            "zelNumberType\n");
}

}  // namespace
}  // namespace native_test
