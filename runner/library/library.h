// What there is to call, by name: filled from the host's records and the runner's own tables.
#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "runner/library/callable.h"

namespace runner {

/// The methods of a class, without those of its super classes.
struct Members {
  Callables methods;  // properties are methods without parameters
  Callables setters;  // their last parameter assigns
  Callables sharedMethods;
  Callables constructors;
};

using Candidates = std::vector<const Callable*>;

class Library {
 public:
  /// Adds the host's further classes and reads everything that is registered by now.
  explicit Library(host::Host& host);

  [[nodiscard]] const Types& types() const { return types_; }

  /// Functions that are no methods, the language's and the program's.
  [[nodiscard]] Candidates functions(std::string_view name) const;
  /// Functions that can be called on a value as if they were its methods.
  [[nodiscard]] Candidates extensions(std::string_view name) const;
  /// Of a class and those above it, those of the class itself first.
  [[nodiscard]] Candidates methods(const std::string& className, std::string_view name) const;
  [[nodiscard]] Candidates setters(const std::string& className, std::string_view name) const;
  [[nodiscard]] Candidates sharedMethods(const std::string& className, std::string_view name) const;
  [[nodiscard]] Candidates constructors(const std::string& className) const;
  /// Methods of arrays of that type; made for it when it is asked for first.
  [[nodiscard]] Candidates arrayMethods(const Type& array, std::string_view name);

  /// For suggestions and completion.
  [[nodiscard]] std::vector<std::string> functionNames() const;
  [[nodiscard]] std::vector<std::string> memberNames(const Type& type);
  [[nodiscard]] std::vector<std::string> sharedNames(const std::string& className) const;

  /// Adds a method of the program that is being checked.
  void add(std::unique_ptr<Callable> function);
  /// The program has been checked: keeps its methods, which then hide earlier ones of the same
  /// parameters, or forgets them.
  void settle(bool keep);

 private:
  using List = Callables Members::*;

  void addClasses(host::Host& host);
  void readRecords(const host::RegisteredClass& record);
  void addRow(Members& members, const NativeRow& row);
  void addNative(const std::string& className, std::span<const NativeRow> rows,
                 bool shared = false);
  void addFunctions(std::span<const NativeRow> rows, bool extends);
  [[nodiscard]] std::unique_ptr<Callable> described(const host::Declaration& declaration,
                                                    std::string text) const;
  [[nodiscard]] std::unique_ptr<Callable> setterOf(const Callable& getter) const;
  [[nodiscard]] Candidates inherited(const std::string& className, List list,
                                     std::string_view name) const;
  [[nodiscard]] Members& arrayMembers(const Type& array);

  Types types_;
  Callables functions_;
  std::ptrdiff_t unsettled_ = 0;            // how many of the first functions may be forgotten yet
  std::map<std::string, Members> members_;  // by the name of the class
  std::map<std::string, Members> arrays_;   // by the name of the type
};

}  // namespace runner
