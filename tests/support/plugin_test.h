// A freshly loaded plugin between the reference host and the Foundation double, with accounts that
// must balance when the test ends.
#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation_double/allocations.h"
#include "foundation_double/foundation.h"
#include "host/family/double.h"
#include "host/family/family.h"
#include "host/host.h"

namespace tests {

using Lines = std::vector<std::string>;
using foundation_double::Foundation;
using host::addToDouble;
using host::Host;
using host::HostOptions;
using host::ObjectRef;
using host::Outcome;
using host::Raised;
using host::Text;
using host::Value;

class PluginTest : public testing::Test {
 protected:
  PluginTest();
  void SetUp() override;
  void TearDown() override;

  /// What the host has and lacks before the plugin starts in it.
  virtual void prepareHost() {}
  /// Loads the plugin into a new host; the old one, if any, must be balanced.
  void startHost(const HostOptions& options);
  /// The whole family is there.
  void provideFamily();
  /// Nothing is left over in the host, in Foundation or of the plugin's own memory.
  void expectBalanced();
  /// Ends the host without asking for its accounts: for tests that make it lose references.
  void abandonHost();

  /// The result of a call that must raise nothing.
  Value ask(const ObjectRef& object, const std::string& method,
            const std::vector<Value>& arguments = {});

  /// What is asked of the host and of Foundation while the body runs, in one order: entry points by
  /// name, messages as "-[Class selector]", Core Foundation functions by name.
  Lines traced(const std::function<void()>& body);

  /// The messages that defaults objects got.
  Lines sentToDefaults();

  foundation_double::Foundation& foundation;
  std::unique_ptr<Host> host;
  std::unique_ptr<host::Family> family;
};

/// A host string, for calling the plugin's functions directly.
class HostText {
 public:
  HostText(Host& host, std::string_view bytes, std::uint32_t encoding = 0x08000100)
      : host_(host), handle_(host.string(bytes, encoding)) {}
  ~HostText() { host_.unlock(handle_); }
  HostText(const HostText&) = delete;
  HostText& operator=(const HostText&) = delete;
  [[nodiscard]] zel::REALstring handle() const { return handle_; }

 private:
  Host& host_;
  zel::REALstring handle_;
};

}  // namespace tests
