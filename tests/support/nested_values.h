// Values that hold values.
#pragma once

#include <algorithm>
#include <string>

#include "host/host.h"

namespace tests {

/// How many lists and dictionaries may stand within each other in one value, and what is raised
/// where there are more.
inline constexpr int kDeepest = 256;
inline const host::Raised kTooDeep{
    "StackOverflowException",
    "A value can't hold itself, nor more than 256 levels of arrays and dictionaries.", 0};

/// So many arrays within each other, around nothing.
inline host::ObjectRef nestedArrays(host::Host& host, int levels) {
  host::ObjectRef array = host.array(host::Host::kObjectElements);
  while (--levels > 0) array = host.array(host::Host::kObjectElements, {array});
  return array;
}

/// So many Dictionaries within each other by the key "inner", around nothing.
inline host::ObjectRef nestedDictionaries(host::Host& host, int levels) {
  host::ObjectRef dictionary = host.dictionary();
  while (--levels > 0) dictionary = host.dictionary({{std::string("inner"), dictionary}});
  return dictionary;
}

/// How many arrays and Dictionaries there are in a value without texts.
inline long levelsIn(const host::Host& host, const host::Value& value) {
  const std::string text = host.describe(value);
  return std::count_if(text.begin(), text.end(), [](char c) { return c == '[' || c == '{'; });
}

}  // namespace tests
