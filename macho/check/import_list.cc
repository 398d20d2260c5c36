#include "macho/check/import_list.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace macho_check {
namespace {

[[noreturn]] void refuse(const std::string& line, const std::string& reason) {
  throw std::runtime_error("the list of imports: " + reason + ": " + line);
}

std::vector<std::string> split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream rest(text);
  for (std::string part; std::getline(rest, part, separator);) {
    if (!part.empty()) parts.push_back(part);
  }
  return parts;
}

// The name of the bundle that a section is for, empty for one that is for every bundle; nullopt for
// a section of something else.
std::optional<std::string> bundleOf(const std::vector<std::string>& heading) {
  if (heading.size() == 1 && heading[0] == "[symbols]") return "";
  if (heading.size() != 2 || heading[0] != "[symbols" || heading[1].back() != ']')
    return std::nullopt;
  return heading[1].substr(0, heading[1].size() - 1);
}

bool isFor(const std::string& processors, const std::string& processor) {
  const std::vector<std::string> known = split(processors, ',');
  return processors == "any" || std::find(known.begin(), known.end(), processor) != known.end();
}

}  // namespace

ImportList readImportList(std::istream& text, const std::string& bundle,
                          const std::string& processor) {
  ImportList list;
  std::map<std::string, std::string> install_names;  // by the list's own names
  std::vector<std::string> heading;
  for (std::string line; std::getline(text, line);) {
    const std::vector<std::string> words = split(line, ' ');
    if (words.empty() || words[0][0] == '#') continue;
    if (words[0][0] == '[') {
      heading = words;
    } else if (heading == std::vector<std::string>{"[libraries]"}) {
      if (words.size() != 3) refuse(line, "not a name, a version and an install name");
      install_names[words[0]] = words[2];
      list.libraries[words[2]] = words[1];
    } else if (const auto user = bundleOf(heading)) {
      if (words.size() < 4) refuse(line, "not a library, processors, a symbol and a reason");
      const auto library = install_names.find(words[0]);
      if (library == install_names.end()) refuse(line, "unknown library");
      const bool used = user->empty() || *user == bundle;
      if (used && isFor(words[1], processor)) list.symbols[words[2]] = library->second;
    } else {
      refuse(line, "not in a section");
    }
  }
  return list;
}

}  // namespace macho_check
