// The reference host: a stand-in for the program that loads the plugin, as the tests' other side.
//
// It talks to the plugin only in the ways that the real one does: it calls REALPluginMain with a
// resolver, reads the class records that the plugin registers, calls the functions in them, and
// answers the entry points that the plugin asks for by name. It keeps accounts of every reference
// on every object, string, array and buffer that it hands out: giving back too much fails at once,
// unbalanced() tells what hasn't been given back.
//
// Entry points are plain C functions, so there is one host at a time. Wrong use by the plugin goes
// to the failure handler; wrong use by the test throws std::invalid_argument.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/array.h"
#include "host/border.h"
#include "host/declaration.h"
#include "host/prepared_call.h"
#include "host/value.h"
#include "plugin/handles.h"

namespace zel {
/// What the plugin is given at start: the entry point of that name, or null.
using Resolver = void* (*)(const char* name);
}  // namespace zel

namespace host {

/// The plugin's entry, REALPluginMain.
using PluginMain = void (*)(zel::Resolver);

struct HostOptions {
  /// Answered by "REALGetRBVersion"; nullopt: that entry point is unknown. Decides how strings are
  /// laid out: before 2013.0 their records can be read directly.
  std::optional<double> version = 2014.0;
  /// Whether the third word of an array points at its elements, or is null.
  bool arraysWithStorage = true;
  /// Whether sequence() is kept; benchmarks do without.
  bool keepSequence = true;
  /// To the plugins that will be loaded.
  Border border = {};
};

/// One method record of a registered class.
struct RegisteredMethod {
  std::string text;  // the declaration as registered
  Declaration declaration;
  PluginFunction function = nullptr;  // null: declared but not there; calling it is a mistake
  PluginFunction setter = nullptr;    // called for an assignment to the declaration; nullable
  std::int32_t flags = 0;
};

/// A class as the plugin registered it, or one of the host's own.
struct RegisteredClass {
  std::string name;
  std::string superName;     // "": none
  std::int32_t version = 0;  // of the record; 0 for a class of the host
  std::int32_t dataSize = 0;
  std::int32_t flags = 0;
  PluginFunction constructor = nullptr;  // class hooks; nullable
  PluginFunction destructor = nullptr;
  std::vector<RegisteredMethod> methods;
  std::vector<RegisteredMethod> sharedMethods;
};

class Host {
 public:
  /// What "RuntimeArrayCreateSingleDimBoundedArray" makes arrays of. To "VarType" these are arrays
  /// of codes 4104 and 4105.
  static constexpr std::int32_t kStringElements = 3;
  static constexpr std::int32_t kObjectElements = 4;

  /// Becomes the current host. Throws std::logic_error while there is another one.
  explicit Host(HostOptions options = {});
  /// Frees what is left, without running hooks and without complaint: ask unbalanced() before.
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  /// The resolver of whichever host is current when it is called.
  static zel::Resolver resolver();
  /// Starts the plugin. Failures of its class record go to the failure handler; a rejected class
  /// isn't registered.
  void load(PluginMain pluginMain);

  // --- what the plugin did at start
  /// The plugin-interface version that the plugin announced.
  [[nodiscard]] std::optional<std::int32_t> announcedVersion() const;
  /// What "REALGetRBVersion" answers; nullopt: that entry point is unknown.
  [[nodiscard]] std::optional<double> version() const;
  /// The names of all classes, in the order of the alphabet.
  [[nodiscard]] std::vector<std::string> classNames() const;
  /// Null when there is no such class; valid until the class is removed.
  [[nodiscard]] const RegisteredClass* findClass(std::string_view name) const;

  // --- calling. Methods are found by name and by the types of the arguments.
  /// A new object: class hooks run, host constructor not called.
  ObjectRef make(const std::string& className);
  /// A new object whose "Constructor" was called. An exception that it raised is left for
  /// takePending().
  ObjectRef construct(const std::string& className, const std::vector<Value>& arguments = {});
  Outcome call(const ObjectRef& object, const std::string& method,
               const std::vector<Value>& arguments = {});
  Outcome callShared(const std::string& className, const std::string& method,
                     const std::vector<Value>& arguments = {});
  /// object.getter(arguments) = value
  Outcome assign(const ObjectRef& object, const std::string& getter,
                 const std::vector<Value>& arguments, const Value& value);
  /// Whether a method of that name can stand on the left of an assignment.
  [[nodiscard]] bool assignable(const std::string& className, const std::string& getter) const;

  // --- strings, for tests that call the plugin's functions directly
  /// A string with one reference for the caller; never null, also for "".
  [[nodiscard]] zel::REALstring string(std::string_view bytes, std::uint32_t encoding = 0x08000100);
  /// The bytes as stored; "" for null.
  [[nodiscard]] std::string bytes(zel::REALstring string) const;
  /// The recorded encoding; kNoEncoding when there is none, also for null.
  [[nodiscard]] std::uint32_t encoding(zel::REALstring string) const;
  /// 0 for null and for a handle that is not (or no longer) one of the host's.
  [[nodiscard]] long references(zel::REALstring string) const;
  [[nodiscard]] long references(zel::REALobject object) const;
  /// Drops a reference that the caller owns.
  void unlock(zel::REALstring string);

  // --- variants. Objects and arrays are variants as they are; what else a variant can hold is a
  // Value. Where variants are elements, keys or values, std::monostate is the null handle, which
  // variant(std::monostate) is not.
  /// A new variant. @param type its type code when it isn't the usual one of the value
  /// (VariantType); std::invalid_argument for an object, which has a code of its own.
  ObjectRef variant(const Value& value, std::optional<std::int32_t> type = std::nullopt);
  /// What a variant holds: objects and arrays as they are, std::monostate for the null handle and
  /// for one that holds nothing. Every other value is given back as it is.
  [[nodiscard]] Value valueOf(const Value& variant) const;
  /// The type code that a value has as a variant, as "VarType" gives it; 0 for no object.
  [[nodiscard]] std::int32_t typeOf(const Value& variant) const;
  /// Any value as a literal, in one line and down to the last element:
  ///   nil  true  Int32 7  Int64 7  UInt32 7  UInt64 7  Single 2.5  Double 2.5  "text"
  ///   ["a", nil]  {"key": Int32 1}  Date 2020-01-31 23:59:59  MemoryBlock 0102ff
  ///   FolderItem /tmp/file  Currency 2.5  Color &cFF0000  Variant(13) Int32 7  NSSizeZEL
  /// Double quotes and backslashes in texts follow a backslash. "..." stands for a container inside
  /// of itself.
  [[nodiscard]] std::string describe(const Value& value) const;

  // --- arrays
  /// An array of these elements. @param elementType kStringElements, kObjectElements, or the type
  /// code that the array has as a variant: 4098 Int32, 4099 Int64, 4100 Single, 4101 Double, 4103
  /// Date, 4104 String, 4105 Object, 4107 Boolean; any other above 4096 is an array of Doubles.
  /// @param elements of just that type; those of object arrays become variants. Anything else
  /// throws std::invalid_argument.
  ObjectRef array(std::int32_t elementType, const std::vector<Value>& elements = {});
  /// The elements, variants among them as what they hold.
  [[nodiscard]] std::vector<Value> elements(const ObjectRef& array) const;
  /// The array to read and change in place; nullopt when the reference is on something else or on
  /// nothing.
  [[nodiscard]] std::optional<Array> findArray(const ObjectRef& object) const;

  // --- the host's own classes. Objects of another class throw std::invalid_argument.
  /// A Dictionary. Keys are equal when they are equal texts (by their bytes: case matters), equal
  /// numbers of any types, equal booleans, both nothing, or the same object.
  ObjectRef dictionary(const Entries& entries = {});
  /// The entries in the order in which their keys were first set.
  [[nodiscard]] Entries entries(const ObjectRef& dictionary) const;
  [[nodiscard]] bool hasKey(const ObjectRef& dictionary, const Value& key) const;
  /// What a key stands for; nullopt when there is no such key. Raises nothing.
  [[nodiscard]] std::optional<Value> lookUp(const ObjectRef& dictionary, const Value& key) const;
  /// Removes a key and what it stands for. False when there was no such key.
  bool removeKey(const ObjectRef& dictionary, const Value& key);
  ObjectRef memoryBlock(std::string_view bytes);
  [[nodiscard]] std::string bytesOf(const ObjectRef& block) const;
  /// The block's own bytes, to be read and written while it lives.
  [[nodiscard]] std::span<std::byte> storageOf(const ObjectRef& block) const;
  /// What "memoryBlockGetSize" answers for the block from now on, true or not.
  void reportSize(const ObjectRef& block, std::int32_t size);
  ObjectRef date(const DateFields& fields);
  [[nodiscard]] DateFields fieldsOf(const ObjectRef& date) const;
  /// An item that exists or not. @param path absolute, in UTF-8.
  ObjectRef folderItem(const std::string& path);
  [[nodiscard]] std::string pathOf(const ObjectRef& item) const;

  // --- what every object has
  /// The class of an object; null for arrays, for variants that hold no object, and for no object.
  /// Valid while the object lives.
  [[nodiscard]] const RegisteredClass* classOf(const ObjectRef& object) const;
  [[nodiscard]] Value property(const ObjectRef& object, const std::string& name) const;
  void setProperty(const ObjectRef& object, const std::string& name, const Value& value);
  /// The instance data.
  template <class Data>
  [[nodiscard]] static Data& data(const ObjectRef& object) {
    return *reinterpret_cast<Data*>(object.as<std::byte*>() + zel::kInstanceDataOffset);
  }

  // --- control. Names of entry points; a global method goes by its own name, "LenB", "VarType",
  // and those of Dictionary and FolderItem by "Dictionary.Value", "Dictionary.SetValue",
  // "Dictionary.Key", "FolderItem.TrueItem".
  /// Lets the resolver answer null for the name, for ever.
  void hide(const std::string& entryPoint);
  /// The same for the next look-ups only.
  void hideFirst(const std::string& entryPoint, int lookups);
  void unhide(const std::string& entryPoint);
  /// Lets the entry point do nothing and answer null, false or 0. @param nthCall 1: the next call
  /// only, 2: the one after it, and so on; 0: every call.
  void answerNull(const std::string& entryPoint, int nthCall = 0);
  /// Takes answerNull back.
  void answerAgain(const std::string& entryPoint);

  // --- records
  [[nodiscard]] int lookups(const std::string& entryPoint) const;
  [[nodiscard]] int calls(const std::string& entryPoint) const;
  /// The entry points that were called, in order.
  [[nodiscard]] const std::vector<std::string>& sequence() const;
  /// Forgets look-ups, calls and the sequence. What was told to fail goes on failing.
  void clearRecords();
  /// Whom to tell of every call of an entry point, by its name and before it is carried out; null:
  /// nobody.
  void onCall(std::function<void(std::string_view)> observer);

  // --- the host's classes. At start: RuntimeException and, below it,
  // UnsupportedOperationException, OutOfMemoryException, OutOfBoundsException,
  // KeyNotFoundException, StackOverflowException and NSExceptionZEL; Date, Dictionary, FolderItem
  // and MemoryBlock.
  /// Adds a class of the host. @param superName "" for none, else a class that exists.
  void addClass(const std::string& name, const std::string& superName, std::int32_t dataSize = 16);
  /// Declares a property, such as "Year as integer", of a class; new objects have it.
  void addProperty(const std::string& className, const std::string& declaration);
  /// Gives a class a method, which takes the instance first. @param setter nullable: what an
  /// assignment to the declaration calls.
  void addMethod(const std::string& className, const std::string& declaration,
                 PluginFunction function, PluginFunction setter = nullptr);
  /// What runs when an object of the class dies, its data still whole.
  void setDestructor(const std::string& className, PluginFunction destructor);
  /// Makes a class unknown. Objects that exist keep their class.
  void removeClass(const std::string& name);

  // --- outcome
  /// The exceptions raised outside of call(), callShared() and assign(), in order; they are
  /// forgotten then.
  std::vector<Raised> takePending();
  /// The same exceptions as the objects that they are.
  std::vector<ObjectRef> takePendingObjects();
  /// Whether there are any to take.
  [[nodiscard]] bool hasPending() const;
  /// What hasn't been given back, one line each, and what was written to after it died; "" when
  /// all is well. Exceptions that nobody has taken yet count as well.
  [[nodiscard]] std::string unbalanced() const;
  /// What to do about wrong use by the plugin; by default, print it and abort. When the handler
  /// returns, the entry point does nothing and answers null.
  void onFailure(std::function<void(const std::string&)> handler);

 private:
  std::unique_ptr<internal::State> state_;
};

}  // namespace host
