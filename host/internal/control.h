// Which entry points fail, and what has been asked of them.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host::internal {

class Control {
 public:
  /// @param names all that can be asked for; every other name is a mistake of the test.
  Control(const std::vector<std::string>& names, bool keepSequence);

  /// Counts a look-up. Whether the name may be found this time.
  bool lookUp(std::string_view name);
  /// Counts a call. Whether it may be carried out; else it is to be answered with null.
  bool call(std::string_view name);
  /// Whether a look-up would fail now; counts nothing.
  [[nodiscard]] bool hidden(std::string_view name) const;

  // See Host; a name that doesn't exist throws std::invalid_argument.
  void hide(std::string_view name) { at(name).hidden = true; }
  void hideFirst(std::string_view name, int lookups) { at(name).hiddenLookups = lookups; }
  void unhide(std::string_view name);
  void answerNull(std::string_view name, int nthCall);
  void answerAgain(std::string_view name);
  [[nodiscard]] int lookups(std::string_view name) const { return at(name).lookups; }
  [[nodiscard]] int calls(std::string_view name) const { return at(name).calls; }
  [[nodiscard]] const std::vector<std::string>& sequence() const { return sequence_; }
  void clearRecords();
  void onCall(std::function<void(std::string_view)> observer) { observer_ = std::move(observer); }

 private:
  struct Entry {
    int lookups = 0;
    int calls = 0;
    bool hidden = false;
    int hiddenLookups = 0;            // how many more fail
    bool null = false;                // every call fails
    std::vector<int> callsUntilNull;  // countdowns; a call that brings one to 0 fails
  };

  Entry& at(std::string_view name);
  [[nodiscard]] const Entry& at(std::string_view name) const;

  std::map<std::string, Entry, std::less<>> entries_;
  std::vector<std::string> sequence_;
  std::function<void(std::string_view)> observer_;
  bool keepSequence_;
};

}  // namespace host::internal
