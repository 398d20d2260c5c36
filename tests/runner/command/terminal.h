// hostrun on a terminal.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace tests {

/// hostrun in a terminal of its own, 80 columns wide. Ends with this object.
class Terminal {
 public:
  /// @param environment assignments for hostrun on top of the test's own, such as "LC_ALL=C".
  /// @param programs what it runs; without any, it is interactive.
  explicit Terminal(const std::vector<std::string>& environment,
                    const std::vector<std::string>& programs = {});
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  /// False on a system that has none to give, such as a chroot without /dev/pts.
  [[nodiscard]] bool isThere() const { return child_ > 0; }
  void type(const std::string& text);
  /// Whether this appears before long; what comes before it is forgotten.
  bool shows(const std::string& wanted);
  /// What appears from here to the end of this text, without it; "(nothing)" when it doesn't.
  std::string until(const std::string& wanted);
  /// The exit status once it has ended: 128 and the signal's number when it was ended by one; -1
  /// when it doesn't end before long.
  int status();

 private:
  bool readMore();

  int terminal_ = -1;
  pid_t child_ = 0;
  std::string seen_;
};

}  // namespace tests
