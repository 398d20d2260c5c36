// What the tests of the seam share.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/pool.h"
#include "native/corefoundation.h"
#include "tests/support/process.h"

namespace native_test {

/// An autorelease pool in place for every test, as a host has one.
class NativeTest : public testing::Test {
 private:
  const host::Pool pool_;
};

/// A native string of that UTF-8 text, autoreleased.
zel::CFStringRef string(const char* text);

/// The UTF-8 text of a native string; "(null)" for null.
std::string text(const void* string);

/// A native object's reference count.
zel::NSInteger referencesOf(const void* object);

using tests::outputOf;

/// Runs the probe (see probe.cc) under this program's name, so that both have the same domain.
std::string probe(std::vector<std::string> arguments);

/// The domain in which this program's defaults are kept.
std::string ownDomain();

}  // namespace native_test
