#include "runner/check/suggest.h"

#include <algorithm>
#include <numeric>

#include "runner/text/text.h"

namespace runner {
namespace {

// How many letters must be put in, left out, exchanged or swapped with their neighbour.
std::size_t editDistance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> before(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(last.begin(), last.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t exchanged = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, exchanged});
      const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (swapped) row[j] = std::min(row[j], before[j - 2] + 1);
    }
    before.swap(last);
    last.swap(row);
  }
  return last[b.size()];
}

}  // namespace

std::string nearest(std::string_view written, const std::vector<std::string>& names) {
  constexpr std::size_t kLongest = 64;
  constexpr std::size_t kLettersPerMistake = 3;
  if (written.size() > kLongest) return "";
  const std::string wanted = folded(written);
  std::size_t best = std::max<std::size_t>(1, wanted.size() / kLettersPerMistake) + 1;
  std::string found;
  for (const std::string& name : names) {
    const std::size_t distance = editDistance(wanted, folded(name));
    if (distance >= best || distance >= wanted.size()) continue;
    best = distance;
    found = name;
  }
  return found;
}

}  // namespace runner
