// A folder of user defaults that belongs to one program run, so that tests, examples and
// benchmarks over the real Foundation never touch the defaults of the person who runs them.
#pragma once

#include <filesystem>
#include <string_view>

namespace host {

/// A new temporary folder for user defaults; removed with everything in it at the end.
class PrivateStore {
 public:
  /// Throws std::system_error or std::filesystem::filesystem_error when the folder can't be made.
  PrivateStore();
  ~PrivateStore();
  PrivateStore(const PrivateStore&) = delete;
  PrivateStore& operator=(const PrivateStore&) = delete;

  /// The folder; the domains are in its subfolder "Defaults".
  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }
  /// The configuration that sends Foundation there: the value for GNUSTEP_CONFIG_FILE in the
  /// environment that a process has from its start.
  [[nodiscard]] std::filesystem::path configFile() const;

 private:
  std::filesystem::path folder_;
};

/// Runs body in a process of its own whose user defaults, and those of every program it starts, are
/// in a new PrivateStore; removes the store afterwards, however the process ended. Call it before
/// anything is asked of Foundation, and return its result from main:
///
///   int main(int argc, char** argv) { return host::runInPrivateStore(argc, argv, run); }
///
/// Inside such a process, and in programs that it starts, body is simply called.
/// @return body's result, or 128 and the signal's number when a signal ended the process.
int runInPrivateStore(int argc, char** argv, int (*body)(int argc, char** argv));

/// The same in a store that is kept: what was stored there before is there again.
/// @param folder made when it isn't there. Throws std::system_error or
/// std::filesystem::filesystem_error when it can't be made or its configuration can't be written.
int runInStore(const std::filesystem::path& folder, int argc, char** argv,
               int (*body)(int argc, char** argv));

/// The file of a domain in the store that this process runs in; it exists once something in the
/// domain has been written to disk. Throws std::logic_error outside of both functions above.
std::filesystem::path storedDomain(std::string_view name);

}  // namespace host
