// A program that does something to the store while a test looks on.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace native_test {

/// A running program; it is ended with the object.
class StoreProcess {
 public:
  /// @param arguments the program's own name, which is its domain, comes first.
  /// @param preloaded a library to be loaded before all others, or nothing.
  StoreProcess(const std::string& program, std::vector<std::string> arguments,
               const std::string& preloaded = "");
  StoreProcess(const StoreProcess&) = delete;
  StoreProcess& operator=(const StoreProcess&) = delete;
  ~StoreProcess();

  void kill();
  /// Whether it has ended, within that time.
  bool hasEnded(double seconds);
  /// Whether it has written to its standard output before it ended, within a minute.
  bool hasWritten();
  /// Waits for its end, which is a test failure after a minute.
  /// @return what it gave to exit, or 128 and its signal.
  int result();
  /// What it wrote to its standard output up to now.
  [[nodiscard]] std::string output() const;
  /// What it wrote to its standard error up to now.
  [[nodiscard]] std::string log() const;

 private:
  pid_t process_ = 0;
  int output_;
  int log_;
  int status_ = -1;
};

/// What store_probe prints with these arguments, without the end of the line; "result N" when it
/// ends with anything but 0.
std::string storeProbe(const std::string& domain, std::vector<std::string> arguments);

}  // namespace native_test
