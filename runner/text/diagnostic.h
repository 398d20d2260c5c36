// What is wrong with a program, as data.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "runner/text/source.h"

namespace runner {

/// Something wrong at a place. Thrown where it is found; whoever goes through statements catches
/// it.
struct Problem {
  Place place;
  std::string message;                    // a whole sentence, without the place; "": said before
  std::vector<std::string> declarations;  // what the program was held against; may be empty
  std::string suggestion;                 // a name that may have been meant; "" for none
};

/// Throws a problem.
[[noreturn]] void refuse(const Place& place, std::string message,
                         std::vector<std::string> declarations = {}, std::string suggestion = "");

/// Gives up what is being checked without another word: what is wrong with it was said before.
[[noreturn]] void giveUp();

struct Diagnostic {
  std::string file;
  int line = 0;
  int column = 0;  // in characters, from 1
  int length = 1;  // in characters, within the line
  std::string lineText;
  std::string message;
  std::vector<std::string> declarations;
  std::string suggestion;
};

Diagnostic diagnose(const Source& source, const Problem& problem);

/// For people, several lines with an end each:
///   file:3:7: error: what is wrong
///     3 | the line itself
///       |       ^~~~
///     declared: method(key as string) as integer
///     Did you mean "name"?
std::string format(const Diagnostic& diagnostic);
std::string format(const std::vector<Diagnostic>& diagnostics);

}  // namespace runner
