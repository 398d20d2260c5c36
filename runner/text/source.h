// The text of a program, and places in it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace runner {

/// A stretch of a source's text, in bytes from its start.
struct Place {
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// From the start of one place to the end of another.
inline Place span(const Place& from, const Place& to) { return {from.begin, to.end}; }

/// A name: as it was written, and as names are compared, without regard to case.
struct Word {
  std::string text;
  std::string key;  // folded
  Place place;
};

class Source {
 public:
  /// @param name what messages call it: the file as it was given.
  Source(std::string name, std::string text);

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] std::string_view text() const { return text_; }
  [[nodiscard]] std::string_view text(const Place& place) const;
  /// The line of a place's start, counted from 1.
  [[nodiscard]] int line(const Place& place) const;
  /// The column of a place's start in characters, counted from 1.
  [[nodiscard]] int column(const Place& place) const;
  /// A whole line without its end. @param line counted from 1.
  [[nodiscard]] std::string_view lineText(int line) const;

 private:
  std::string name_;
  std::string text_;
  std::vector<std::size_t> lines_;  // where they start
};

}  // namespace runner
