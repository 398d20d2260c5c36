#include "tests/docs/pages.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace tests {
namespace {

constexpr std::string_view kFence = "```";
constexpr std::string_view kChapterMark = "## ";

// The level of a heading; 0 for any other line.
int headingLevel(std::string_view line) {
  const std::size_t level = line.find_first_not_of('#');
  return level != 0 && level != std::string_view::npos && line[level] == ' '
             ? static_cast<int>(level)
             : 0;
}

// Reads the lines of a page one by one.
class Reader {
 public:
  explicit Reader(const std::string& file) : file_(file), in_(file) {
    if (!in_) throw std::runtime_error("can't read " + file);
  }

  bool next(std::string& line) {
    ++number_;
    return static_cast<bool>(std::getline(in_, line));
  }

  // The block that an opening fence begins.
  Block block(std::string_view fence) {
    Block found{std::string(fence.substr(kFence.size())), "", number_};
    for (std::string line; next(line); found.text += line + '\n') {
      if (line == kFence) return found;
    }
    throw std::runtime_error(file_ + ": the block of line " + std::to_string(found.line) +
                             " has no end");
  }

 private:
  std::string file_;
  std::ifstream in_;
  int number_ = 0;
};

}  // namespace

std::vector<Section> sectionsOf(const std::string& file) {
  Reader reader(file);
  std::vector<Section> sections(1);
  for (std::string line; reader.next(line);) {
    if (line.starts_with(kFence)) {
      sections.back().blocks.push_back(reader.block(line));
    } else if (const int level = headingLevel(line); level > 0) {
      const std::string title = line.substr(static_cast<std::size_t>(level) + 1);
      const bool opens = line.starts_with(kChapterMark);
      sections.push_back({level, title, opens ? title : sections.back().chapter, "", {}});
    } else {
      sections.back().text += line + '\n';
    }
  }
  return sections;
}

std::vector<Example> examplesIn(const std::string& file) {
  std::vector<Example> examples;
  for (const Section& section : sectionsOf(file)) {
    for (auto block = section.blocks.begin(); block != section.blocks.end(); ++block) {
      if (block->language != "xojo") continue;
      const auto next = block + 1;
      const bool said = next != section.blocks.end() && next->language == "text";
      examples.push_back(
          {file, block->line, block->text, said ? std::optional(next->text) : std::nullopt});
    }
  }
  return examples;
}

std::vector<std::string> pages() {
  const std::filesystem::path project = ZEL_PROJECT;
  std::vector<std::string> found;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(project / "docs")) {
    if (entry.path().extension() == ".md") found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  found.insert(found.begin(), project / "README.md");
  return found;
}

}  // namespace tests
