#include "macho/loader/bundle.h"

#include <set>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "host/loading/opened_file.h"
#include "macho/loader/passages.h"

namespace host {
namespace {

// A bundle that isn't opened a second time while it is open.
class OpenBundle {
 public:
  explicit OpenBundle(const std::filesystem::path& folder)
      : path_(folder.native()), bundle_(folder) {
    if (!open().insert(path_).second) throw std::runtime_error(path_ + " is loaded already");
  }
  ~OpenBundle() { open().erase(path_); }
  OpenBundle(const OpenBundle&) = delete;
  OpenBundle& operator=(const OpenBundle&) = delete;

  [[nodiscard]] bool mustStay() const { return bundle_.mustStay(); }
  [[nodiscard]] PluginMain entryPoint() const {
    void* const found = bundle_.find("REALPluginMain");
    if (found == nullptr)
      throw std::runtime_error(path_ + " has no REALPluginMain: it is no plugin");
    return reinterpret_cast<PluginMain>(found);
  }

 private:
  static std::set<std::string>& open() {
    static std::set<std::string> paths;
    return paths;
  }

  std::string path_;
  macho::Bundle bundle_;
};

// Lets the bundle live for ever.
void keep(const std::shared_ptr<OpenBundle>& bundle) {
  static auto& kept = *new std::vector<std::shared_ptr<OpenBundle>>;
  kept.push_back(bundle);
}

}  // namespace

OpenedFile openBundle(const std::filesystem::path& folder) {
  std::error_code problem;
  const std::filesystem::path whole = std::filesystem::canonical(folder, problem);
  if (problem) throw std::runtime_error(folder.native() + ": " + problem.message());
  auto bundle = std::make_shared<OpenBundle>(whole);
  const PluginMain main = bundle->entryPoint();
  if (bundle->mustStay()) keep(bundle);
  return {std::move(bundle), main, {.enter = macho::enterBundle, .outward = macho::outward}};
}

}  // namespace host
