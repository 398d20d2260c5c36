// The pages of the documentation, as Markdown text: their sections and the examples in them.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tests {

/// A fenced block of a page.
struct Block {
  std::string language;  // what stands behind the fence; may be empty
  std::string text;      // every line with its end
  int line;              // of the fence, from 1
};

/// What stands below a heading, up to the next one of any level.
struct Section {
  int level;            // 1 for "# title"
  std::string title;    // "" for what stands before the first heading
  std::string chapter;  // the title of the "## heading" that it stands under, or is
  std::string text;     // without headings and blocks
  std::vector<Block> blocks;
};

/// A program and what it prints.
struct Example {
  std::string page;  // its file
  int line;
  std::string program;
  std::optional<std::string> output;  // none: the page doesn't say
};

/// Throws std::runtime_error when the file can't be read, or a fence isn't closed.
std::vector<Section> sectionsOf(const std::string& file);

/// The programs of a page: blocks of the language "xojo", each with the "text" block that is next.
/// Throws like sectionsOf.
std::vector<Example> examplesIn(const std::string& file);

/// README.md and every page of docs/ and the folders in it, by path.
std::vector<std::string> pages();

}  // namespace tests
