// What there is to call, by name: filled from the host's records and the runner's own tables.
#pragma once

#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "runner/library/callable.h"
#include "runner/library/symbols.h"

namespace runner {

/// Callables by their folded names.
class Group {
 public:
  /// Adds a callable behind others of its name.
  const Callable& add(std::unique_ptr<Callable> callable);
  [[nodiscard]] const Candidates& named(const std::string& key) const;
  [[nodiscard]] const Callables& all() const { return all_; }

 private:
  Callables all_;
  std::unordered_map<std::string, Candidates> byKey_;
};

/// The methods of a class, without those of its super classes.
struct Members {
  Group methods;  // properties are methods without parameters
  Group setters;  // their last parameter assigns
  Group shared;
  Group constructors;
};

class Library {
 public:
  /// Adds the host's further classes and reads everything that is registered by now.
  explicit Library(Machine& machine);
  /// The host forgets the classes of programs.
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  /// The functions and types of the language and of plugins.
  [[nodiscard]] const Scope& language() const { return language_; }
  /// What programs that ran have left: their variables and methods.
  [[nodiscard]] Scope& session() { return session_; }
  /// Their types and modules, which a variable of the same name doesn't replace.
  [[nodiscard]] Scope& sessionTypes() { return sessionTypes_; }
  /// Owns the methods of a program from now on.
  void keep(Callables methods);
  void keep(std::unique_ptr<ProgramClass> added);

  /// The methods of a class, without those of the classes above it.
  [[nodiscard]] Members& membersOf(Type type);
  /// Whether a class or one above it has a member of that name.
  [[nodiscard]] bool hasMember(Type type, const std::string& key);
  /// The constants and types that stand within a class, or the values of an enum; null for none.
  [[nodiscard]] const Scope* spaceOf(Type type) const;
  /// The same, made for it. @param outer what stands around it.
  Scope& addSpace(Type type, const Scope* outer);

  /// Of a class and those above it, those of the class itself first; of arrays and Variants, too.
  /// @param key the folded name.
  [[nodiscard]] Candidates methods(Type type, const std::string& key);
  [[nodiscard]] Candidates setters(Type type, const std::string& key);
  [[nodiscard]] Candidates shared(Type type, const std::string& key);
  [[nodiscard]] Candidates constructors(Type type);

  /// For suggestions and completion.
  [[nodiscard]] std::vector<std::string> memberNames(Type type);
  [[nodiscard]] std::vector<std::string> sharedNames(Type type);
  /// What can stand behind a module or type and a point; nothing for any other symbol.
  [[nodiscard]] std::vector<std::string> namesIn(const Symbol& space);

 private:
  void addClasses();
  void addConstants();
  void readRecords(const host::RegisteredClass& record);
  void addRow(Members& members, const NativeRow& row);
  void addShared(const char* className, std::span<const NativeRow> rows);
  void addMembers(const char* className, std::span<const NativeRow> rows);
  /// Adds a class of the runner's own, whose objects have fields.
  void addOwnClass(const char* name, std::vector<Type> fields, std::span<const NativeRow> rows);
  void addFunctions(std::span<const NativeRow> rows, bool extends);
  [[nodiscard]] std::unique_ptr<Callable> described(const host::Declaration& declaration,
                                                    std::string text) const;
  void addArrayMembers(Type array, Members& members) const;
  [[nodiscard]] Candidates inherited(Type type, Group Members::*group, const std::string& key);

  Machine& machine_;
  Scope language_{nullptr};
  Scope sessionTypes_{&language_};
  Scope session_{&sessionTypes_};
  Group functions_;
  Callables kept_;
  std::vector<std::unique_ptr<ProgramClass>> keptClasses_;
  std::unordered_map<const TypeRow*, std::unique_ptr<Scope>> spaces_;
  std::unordered_map<const TypeRow*, Members> members_;
};

}  // namespace runner
