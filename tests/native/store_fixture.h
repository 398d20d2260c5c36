// Tests of the store that let other processes use it.
#pragma once

#include <filesystem>
#include <unistd.h>

#include "host/store/private_store.h"
#include "tests/native/store_process.h"
#include "tests/native/support.h"

namespace native_test {

inline constexpr double kAMoment = 4;  // seconds; a lock that GNUstep itself waits for takes 20

/// Every test has a domain of its own, which other processes use as theirs.
class StoreTest : public NativeTest {
 protected:
  StoreTest()
      : domain_(testing::UnitTest::GetInstance()->current_test_info()->name() +
                std::to_string(getpid())) {
    std::replace(domain_.begin(), domain_.end(), '/', '.');
  }
  ~StoreTest() override {
    for (const std::filesystem::path& file : files()) std::filesystem::remove_all(file);
  }

  [[nodiscard]] const std::string& domain() const { return domain_; }
  [[nodiscard]] std::filesystem::path file() const { return host::storedDomain(domain_); }
  /// The domain's file and what was put aside of it.
  [[nodiscard]] std::vector<std::filesystem::path> files() const {
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::directory_iterator(file().parent_path())) {
      if (entry.path().filename().native().starts_with(domain_)) found.push_back(entry.path());
    }
    std::sort(found.begin(), found.end());
    return found;
  }
  [[nodiscard]] std::string ask(std::vector<std::string> arguments) const {
    return storeProbe(domain_, std::move(arguments));
  }
  static std::filesystem::path lockFolder() {
    return host::storedDomain("any").parent_path() / ".lck" / ".GNUstepDefaults.lck";
  }
  static zel::id standard() {
    return zel::send<zel::id, "standardUserDefaults">(zel::classNamed<"NSUserDefaults">());
  }
  static bool synchronize() { return zel::send<zel::BOOL, "synchronize">(standard()) != 0; }
  static zel::id dictionary(const char* key, const char* value) {
    return zel::send<zel::id, "dictionaryWithObject:forKey:">(zel::classNamed<"NSDictionary">(),
                                                              string(value), string(key));
  }
  /// What synchronize says, and what it writes into the log.
  static std::pair<bool, std::string> synchronizeLogged() {
    testing::internal::CaptureStderr();
    const bool answer = synchronize();
    return {answer, testing::internal::GetCapturedStderr()};
  }
  static void setDomain(const std::string& name, zel::id values) {
    zel::send<void, "setPersistentDomain:forName:">(standard(), values, string(name.c_str()));
  }
  static std::string inDomain(const std::string& name, const char* key) {
    const zel::id values =
        zel::send<zel::id, "persistentDomainForName:">(standard(), string(name.c_str()));
    return text(zel::send<zel::id, "objectForKey:">(values, string(key)));
  }

 private:
  std::string domain_;
};

}  // namespace native_test
