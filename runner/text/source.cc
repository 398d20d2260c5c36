#include "runner/text/source.h"

#include <algorithm>
#include <utility>

#include "runner/text/text.h"

namespace runner {

Source::Source(std::string name, std::string text)
    : name_(std::move(name)), text_(std::move(text)), lines_{0} {
  for (std::size_t i = 0; i < text_.size(); ++i) {
    const bool carriageReturnAlone = text_[i] == '\r' && text_.substr(i + 1, 1) != "\n";
    if (text_[i] == '\n' || carriageReturnAlone) lines_.push_back(i + 1);
  }
}

std::string_view Source::text(const Place& place) const {
  return std::string_view(text_).substr(place.begin, place.end - place.begin);
}

int Source::line(const Place& place) const {
  return static_cast<int>(std::upper_bound(lines_.begin(), lines_.end(), place.begin) -
                          lines_.begin());
}

int Source::column(const Place& place) const {
  const std::size_t start = lines_[static_cast<std::size_t>(line(place)) - 1];
  return static_cast<int>(characters(text({start, place.begin}))) + 1;
}

std::string_view Source::lineText(int line) const {
  const auto index = static_cast<std::size_t>(line) - 1;
  const std::size_t end = index + 1 < lines_.size() ? lines_[index + 1] : text_.size();
  std::string_view found = text({lines_[index], end});
  while (!found.empty() && (found.back() == '\n' || found.back() == '\r')) found.remove_suffix(1);
  return found;
}

}  // namespace runner
