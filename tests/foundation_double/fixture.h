// What the tests of the Foundation double have in common.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "foundation_double/foundation.h"
#include "native/exceptions.h"

using Lines = std::vector<std::string>;

class FoundationTest : public testing::Test {
 protected:
  void SetUp() override { foundation_.reset(); }
  void TearDown() override {
    EXPECT_EQ(foundation_.unbalanced(), "");
    foundation_.reset();
  }

  /// Collects what the double complains about instead of aborting.
  void collectFailures() {
    foundation_.onFailure([this](const std::string& text) { failures_.push_back(text); });
  }

  zel::id object(const std::string& text) {
    return reinterpret_cast<zel::id>(const_cast<zel::CFStringObject*>(foundation_.string(text)));
  }

  /// "name: reason" of the exception that leaves the body; "" when none does.
  template <class Body>
  std::string raised(Body&& body) {
    const zel::id exception = zel::catching(body);
    if (exception == nullptr) return "";
    return foundation_.utf8(zel::send<zel::CFStringRef, "name">(exception)) + ": " +
           foundation_.utf8(zel::send<zel::CFStringRef, "reason">(exception));
  }

  foundation_double::Foundation& foundation_ = foundation_double::Foundation::shared();
  Lines failures_;
};
