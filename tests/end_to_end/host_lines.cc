#include "tests/end_to_end/host_lines.h"

namespace tests {
namespace {

using host::Host;
using host::ObjectRef;
using host::Value;

class HostLines {
 public:
  explicit HostLines(const Host& host) : host_(host) {}

  void add(const std::string& path, const Value& value) {
    const std::string literal = host_.describe(value);
    if (literal.starts_with("[")) {
      addElements(path, std::get<ObjectRef>(value));
    } else if (literal.starts_with("{")) {
      addEntries(path, std::get<ObjectRef>(value));
    } else {
      lines_[path] = literal;
    }
  }
  [[nodiscard]] const Lines& lines() const { return lines_; }

 private:
  static std::string below(const std::string& path, const std::string& name) {
    return path.empty() ? name : path + '.' + name;
  }
  void addElements(const std::string& path, const ObjectRef& list) {
    const std::vector<Value> elements = host_.elements(list);
    lines_[path] = "list " + std::to_string(elements.size());
    for (std::size_t i = 0; i < elements.size(); ++i)
      add(below(path, std::to_string(i)), elements[i]);
  }
  void addEntries(const std::string& path, const ObjectRef& dictionary) {
    const host::Entries entries = host_.entries(dictionary);
    lines_[path] = "dictionary " + std::to_string(entries.size());
    for (const auto& [key, value] : entries) add(below(path, std::get<std::string>(key)), value);
  }

  const Host& host_;
  Lines lines_;
};

}  // namespace

Lines linesOf(const Host& host, const Value& value) {
  HostLines lines(host);
  lines.add("", value);
  return lines.lines();
}

}  // namespace tests
