#include "native/corefoundation.h"
#include "tests/native/support.h"

namespace native_test {
namespace {

class ConstantsTest : public NativeTest {};

TEST_F(ConstantsTest, DomainNamesAreFoundations) {
  EXPECT_EQ(text(zel::zelFoundationConstant("NSGlobalDomain")), "NSGlobalDomain");
  EXPECT_EQ(text(zel::zelFoundationConstant("NSArgumentDomain")), "NSArgumentDomain");
  EXPECT_EQ(text(zel::zelFoundationConstant("NSRegistrationDomain")), "NSRegistrationDomain");
  EXPECT_EQ(text(zel::zelFoundationConstant("NSUserDefaultsDidChangeNotification")),
            "NSUserDefaultsDidChangeNotification");
}

TEST_F(ConstantsTest, WhatIsNoTextConstantGivesNull) {
  EXPECT_EQ(zel::zelFoundationConstant("NSNoSuchDomain"), nullptr);
  EXPECT_EQ(zel::zelFoundationConstant(""), nullptr);
  EXPECT_EQ(zel::zelFoundationConstant(nullptr), nullptr);
  EXPECT_EQ(zel::zelFoundationConstant("NSLog"), nullptr);                      // a function
  EXPECT_EQ(zel::zelFoundationConstant("NSZeroRect"), nullptr);                 // a structure
  EXPECT_EQ(zel::zelFoundationConstant("NSFoundationVersionNumber"), nullptr);  // a number
}

}  // namespace
}  // namespace native_test
