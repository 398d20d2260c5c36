// Calls of the methods of a registered class, made up from a seed.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "host/host.h"

namespace tests {

/// A call that is made up: the same for the same seed and the same calls before.
struct GeneratedCall {
  enum class Kind { kMethod, kAssignment, kShared };
  Kind kind;
  std::string method;
  std::vector<testkit::Value> arguments;  // of an assignment, the value comes last
};

/// Makes up calls of every method of a class, with arguments of the types that its declarations ask
/// for: every kind of value in variants, lists and dictionaries, and every so often nothing at all.
class CallGenerator {
 public:
  /// @param host has the class registered; outlives this.
  CallGenerator(testkit::Host& host, const std::string& className, unsigned seed);

  GeneratedCall next();
  /// Of everything that a call is made up from.
  std::size_t below(std::size_t limit);

 private:
  struct Candidate {
    GeneratedCall::Kind kind;
    const testkit::Declaration* declaration;
    std::vector<testkit::Parameter> parameters;
  };

  void addCandidates(const std::vector<testkit::RegisteredMethod>& methods, bool shared);
  testkit::Value argument(const testkit::Parameter& parameter);
  testkit::Value text();
  testkit::Value variant(int depth);
  testkit::ObjectRef simpleVariant();
  testkit::ObjectRef dictionary(int depth);
  testkit::ObjectRef array(int depth);
  testkit::ObjectRef typedArray();
  testkit::ObjectRef date();
  testkit::ObjectRef file();
  std::string bytes();

  testkit::Host& host_;
  std::mt19937 random_;
  std::vector<Candidate> candidates_;
};

}  // namespace tests
