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
  std::vector<host::Value> arguments;  // of an assignment, the value comes last
};

/// Makes up calls of every method of a class, with arguments of the types that its declarations ask
/// for: every kind of value in variants, lists and dictionaries, and every so often nothing at all.
class CallGenerator {
 public:
  /// @param host has the class registered; outlives this.
  CallGenerator(host::Host& host, const std::string& className, unsigned seed);

  GeneratedCall next();
  /// Of everything that a call is made up from.
  std::size_t below(std::size_t limit);

 private:
  struct Candidate {
    GeneratedCall::Kind kind;
    const host::Declaration* declaration;
    std::vector<host::Parameter> parameters;
  };

  void addCandidates(const std::vector<host::RegisteredMethod>& methods, bool shared);
  host::Value argument(const host::Parameter& parameter);
  host::Value text();
  host::Value variant(int depth);
  host::ObjectRef simpleVariant();
  host::ObjectRef dictionary(int depth);
  host::ObjectRef array(int depth);
  host::ObjectRef typedArray();
  host::ObjectRef date();
  host::ObjectRef file();
  std::string bytes();

  host::Host& host_;
  std::mt19937 random_;
  std::vector<Candidate> candidates_;
};

}  // namespace tests
