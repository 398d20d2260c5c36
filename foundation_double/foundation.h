// The Foundation double: what stands behind the seam in the portable test build.
//
// A small Objective-C-like runtime and the Foundation classes that the plugin talks to, written in
// C++. It defines the C functions of native/dispatch.h, native/methods.h, native/exceptions.h,
// native/numbers.h, native/corefoundation.h and native/files.h, so product code reaches it exactly
// as it reaches a real runtime. Around that it keeps accounts of every reference, records what was
// asked of it and fails on request.
//
// Everything lives in one process-wide object for one thread. reset() between tests puts it back to
// the start; class objects, selectors, constants and the pointer table keep their addresses, since
// product code remembers them for good.
//
// Calls that a test makes through the seam itself (zel::send, CFRelease, ...) are recorded, counted
// and failed like the product's.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "foundation_double/number_value.h"
#include "native/corefoundation.h"
#include "native/geometry.h"
#include "native/objc.h"

namespace foundation_double {

class Foundation {
 public:
  /// Any method's body: R f(zel::id self, zel::SEL selector, arguments...), with the type erased.
  using Implementation = void (*)();

  static Foundation& shared();
  Foundation(const Foundation&) = delete;
  Foundation& operator=(const Foundation&) = delete;

  /// Puts everything back to the start: frees every object, balanced or not, and undoes faults,
  /// hidden and added things, records, the store and the failure handler.
  void reset();

  // --- reference accounts

  /// Drains the pool and then describes every object that still carries references, one a line,
  /// such as `NSString "key": 1 reference`; "" when everything is balanced. References that
  /// Foundation itself holds (the store, the standard defaults, an exception's name) don't count.
  std::string unbalanced();
  /// Drops everything that was autoreleased.
  void drainPool();
  /// The object's references, those of Foundation and of the pool included; 0 for a dead object.
  long references(const void* object);

  // --- records, since reset or clearRecords

  /// Every message, in order: "-[NSUserDefaults setInteger:forKey:]", "+[NSUserDefaults alloc]".
  /// The class is the receiver's own, not the one that defines the method. A method that is looked
  /// up once and called again and again, as zel::Repeated does, is one message.
  const std::vector<std::string>& messages();
  /// Every Core Foundation call by name, in order, NSLog and zelFoundationConstant included.
  const std::vector<std::string>& calls();
  /// The lines given to NSLog, formatted, a trailing newline kept.
  const std::vector<std::string>& log();
  void clearRecords();
  /// Whom to tell of every message and every call, as they are recorded and before they are carried
  /// out; null: nobody.
  void onRecord(std::function<void(const std::string&)> observer);

  // --- faults

  /// Makes the n-th message from now raise instead of reaching its method; 1 is the next one and 0
  /// takes the fault back. retain, release and autorelease count but can't raise, as in a real
  /// runtime: a fault that is due at one of them goes off at the next message that can. An
  /// initialiser that raises gives up its object, as one that answers nil does.
  /// @param exception not owned; null: an NSException "TestException", "told to fail".
  void throwAtMessage(long n, zel::id exception = nullptr);
  /// Makes the n-th call of that function raise an NSException "TestException", "told to fail".
  void throwAtCall(const std::string& cfFunction, long n = 1);
  /// Makes the n-th call of that function fail: it does nothing and answers null, false or 0. The
  /// File Manager's functions answer ioErr (-36) and zelNumberType answers "".
  void failCall(const std::string& cfFunction, long n = 1);
  /// Whether a fault that was asked for hasn't gone off yet.
  bool faultsPending();
  /// Runs the action whenever zelCatch is called, before its body, until reset. @param action null
  /// takes it back.
  void beforeCatching(std::function<void()> action);
  /// Makes zelFoundationConstant answer null for that name.
  void hideConstant(const std::string& name);
  /// Makes the class and its instances not know the message, as if nobody had ever defined it.
  void hideSelector(const std::string& className, const std::string& selector);
  /// Lets object_getClassName answer null for the class itself.
  void hideClassName(const std::string& className);
  /// What happens on misuse: an over-release, a message to a dead object, a wrong kind of object.
  /// By default the text is printed and the process aborts. When the handler returns, an
  /// over-release is ignored and a message to a dead object answers nil or 0; misuse that has no
  /// such answer throws std::logic_error.
  void onFailure(std::function<void(const std::string&)> handler);

  // --- run-time definitions for one test

  /// Defines a class; the super class must exist. A class that a test defines again under the same
  /// name is the same class object.
  zel::Class* addClass(const std::string& name, const std::string& superName);
  /// Adds or replaces a method. @param function a function or a lambda without captures; see
  /// Implementation for its shape.
  template <class F>
  void addMethod(const std::string& className, const std::string& selector, F function) {
    addImplementation(className, selector, reinterpret_cast<Implementation>(+function));
  }
  /// The same for a message to the class object.
  template <class F>
  void addClassMethod(const std::string& className, const std::string& selector, F function) {
    addClassImplementation(className, selector, reinterpret_cast<Implementation>(+function));
  }
  /// The type encoding that class_addMethod was given for a class method; "" for any other one.
  std::string typesOfAdded(const std::string& className, const std::string& selector);

  // --- making and reading objects

  /// An autoreleased string. @param utf8 valid UTF-8; may hold U+0000.
  zel::CFStringRef string(std::string_view utf8);
  /// An autoreleased string of any UTF-16 units, lone surrogates included.
  zel::CFStringRef string16(std::u16string_view units);
  /// An autoreleased string "x" that pretends to have that many units.
  zel::CFStringRef stringOfLength(zel::CFIndex pretended);
  /// An autoreleased exception. @param className NSException or a subclass.
  zel::id exception(const std::optional<std::string>& name,
                    const std::optional<std::string>& reason,
                    const std::string& className = "NSException", zel::id userInfo = nullptr);
  /// A plain autoreleased instance; anything can be thrown, whether it is an NSException or not.
  zel::id object(const std::string& className);
  /// A dictionary from pointers to pointers that retains nothing; empty after a reset. There is one
  /// and it belongs to the double.
  zel::CFMutableDictionaryRef pointerTable();
  /// What stands in the pointer table.
  const std::map<const void*, const void*>& pointerTableEntries();
  /// A string, URL or other handle as an object.
  template <class Native>
  static zel::id asObject(Native* handle) {
    return reinterpret_cast<zel::id>(const_cast<std::remove_const_t<Native>*>(handle));
  }

  /// An autoreleased number that says it has that type and holds the value as it is given, whether
  /// or not the type could. @param code any text: "c", "C", "s", ... "d", or one that nobody knows.
  template <class T>
  zel::id number(const std::string& code, T value) {
    return makeNumber(code, numberValue(value));
  }
  /// An autoreleased boolean, as numberWithBool: makes it: type code "c".
  zel::id boolean(bool value);
  /// Autoreleased data. Its bytes have an address even when there are none.
  zel::id data(std::string_view bytes);
  /// Autoreleased data that pretends to have that many bytes; there is only one, a zero.
  zel::id dataOfLength(zel::NSUInteger pretended);
  /// Autoreleased data of that length whose bytes are nowhere.
  zel::id dataWithoutBytes(zel::NSUInteger length);
  /// An autoreleased NSDate. @param seconds since the first instant of 2001 in Greenwich.
  zel::id date(double seconds);
  /// How far the local time zone is ahead of Greenwich; 0 after a reset. Dates that exist already
  /// keep the zone that they were made in.
  void setTimeZone(std::int32_t secondsEast);
  /// The NSNull.
  zel::id null();
  /// An autoreleased, immutable list. @param elements not nil.
  zel::id array(const std::vector<zel::id>& elements);
  /// An autoreleased, immutable dictionary in that order. @param entries no nil among them.
  zel::id dictionary(const std::vector<std::pair<zel::id, zel::id>>& entries);
  /// The same with text for keys.
  zel::id dictionary(std::initializer_list<std::pair<std::string, zel::id>> entries);
  /// The capacity that a list or dictionary was asked for; nullopt when it wasn't.
  std::optional<zel::NSUInteger> capacity(const void* collection);
  /// Autoreleased values of Foundation's structures.
  zel::id value(zel::NSPoint point);
  zel::id value(zel::NSSize size);
  zel::id value(zel::NSRect rect);
  zel::id value(zel::NSRange range);
  /// An autoreleased value that says it has that type and holds nothing.
  zel::id value(const std::string& objCType);
  /// An autoreleased URL. @param text a valid, absolute URL.
  zel::CFURLRef url(const std::string& text);
  /// The autoreleased URL of an absolute path, escaped as needed, whether or not there is such an
  /// item. A path that ends in a slash is that of a folder.
  zel::CFURLRef fileUrl(const std::string& path);

  /// Any object as a literal, in one line:
  ///   nil  null  true  7  2.5  "text"  <0102>  (1, "b", ())  {"a" = 1, "b" = {}}
  ///   date(86400.5)  url("http://x/")  size(1, 2)  point(1, 2)  rect(1, 2, 3, 4)  range(1, 2)
  ///   value({?=qll})  NSObject
  /// Numbers of type "c" that hold 0 or 1 are false and true; zel::zelNumberType tells the type of
  /// any other. Quotes and backslashes in texts follow a backslash. Dictionaries are in insertion
  /// order, except those that the defaults store gives: theirs are sorted.
  std::string describe(const void* object);

  /// A string's text. A lone surrogate becomes its three-byte form; null becomes "(null)".
  std::string utf8(zel::CFStringRef string);

  // --- the defaults store
  // Every defaults object of the same user reads and writes the same values, as with a real
  // database; initWithUser: with nil means the user of the process.

  /// The object that +standardUserDefaults gives, without a new reference.
  zel::NSUserDefaults* standardDefaults();
  void standardDefaultsGivesNil(bool givesNil);
  void initWithUserGivesNil(bool givesNil);
  void initGivesNil(bool givesNil);
  /// The argument of the last initWithUser:. nullopt: never called; inner nullopt: nil.
  std::optional<std::optional<std::string>> lastUserName();
  /// The persistent domain that values set by key go to. No persistent domain exists before
  /// something is set in it; "NSArgumentDomain" and "NSRegistrationDomain" always exist as volatile
  /// ones. The lists of domain names are sorted.
  static constexpr const char* kApplicationDomain = "com.example.program";
  /// Makes the value of a key in a domain one that an administrator forces.
  void force(const std::string& key, const std::string& domain = kApplicationDomain);

  // --- the file system
  // A tree in memory, the only one that the File Manager's and Core Foundation's functions see. The
  // folder "/" is there from the start, a volume named "Disk". Names are compared by case and kept
  // in Unicode form D, so composed and decomposed names are the same.

  /// Makes a file, a folder or another volume's root; the folders above are made as needed. An item
  /// that exists already and is of that kind stays as it is. @param path absolute.
  void makeFile(const std::string& path);
  void makeFolder(const std::string& path);
  void makeVolume(const std::string& path);
  /// Removes an item and what is in it; references to it then name nothing. @param path not "/".
  void removeFile(const std::string& path);
  /// Whether there is such an item.
  bool fileExists(const std::string& path);

 private:
  Foundation() = default;
  zel::id makeNumber(const std::string& code, NumberValue value);
  void addImplementation(const std::string& className, const std::string& selector,
                         Implementation implementation);
  void addClassImplementation(const std::string& className, const std::string& selector,
                              Implementation implementation);
};

}  // namespace foundation_double
