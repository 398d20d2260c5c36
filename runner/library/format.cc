#include "runner/library/format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

namespace runner {
namespace {

// A pattern, taken apart.
struct Layout {
  std::string before;  // of the number
  std::string after;
  int wholeDigits = 0;  // that are always there
  int decimals = 0;     // at most
  int sureDecimals = 0;
  bool grouped = false;
  bool percent = false;
  bool minus = false;
  bool plus = false;
  bool exponent = false;
  bool exponentPlus = false;
  int exponentDigits = 0;
};

class LayoutReader {
 public:
  explicit LayoutReader(std::string_view pattern) : pattern_(pattern) {}

  Layout read() {
    for (at_ = 0; at_ < pattern_.size(); ++at_) character(pattern_[at_]);
    return layout_;
  }

 private:
  void character(char c) {
    const char next = at_ + 1 < pattern_.size() ? pattern_[at_ + 1] : '\0';
    if (c == '#' || c == '0') {
      digit(c);
    } else if (c == '.' && !decimal_) {
      decimal_ = number_ = true;
    } else if (c == ',') {
      layout_.grouped = true;
    } else if ((c == 'E' || c == 'e') && (next == '+' || next == '-')) {
      layout_.exponent = true;
      layout_.exponentPlus = next == '+';
      ++at_;
    } else if (c == '-') {
      layout_.minus = true;
    } else if (c == '+') {
      layout_.plus = true;
    } else {
      if (c == '%') layout_.percent = true;
      const bool quoted = c == '\\' && next != '\0';
      if (quoted) ++at_;
      (number_ ? layout_.after : layout_.before) += quoted ? next : c;
    }
  }

  void digit(char c) {
    number_ = true;
    const int sure = c == '0' ? 1 : 0;
    if (layout_.exponent) {
      layout_.exponentDigits += sure;
    } else if (!decimal_) {
      layout_.wholeDigits += sure;
    } else {
      ++layout_.decimals;
      if (sure != 0) layout_.sureDecimals = layout_.decimals;
    }
  }

  std::string_view pattern_;
  std::size_t at_ = 0;
  bool decimal_ = false;
  bool number_ = false;
  Layout layout_;
};

std::vector<std::string_view> sections(std::string_view pattern) {
  std::vector<std::string_view> found;
  for (;;) {
    const std::size_t end = std::min(pattern.find(';'), pattern.size());
    found.push_back(pattern.substr(0, end));
    if (end == pattern.size()) return found;
    pattern.remove_prefix(end + 1);
  }
}

// Positive and finite, with as many decimals as the layout has at most.
std::string digitsOf(double number, const Layout& layout) {
  constexpr std::size_t kEnough = 1200;
  constexpr int kMostDecimals = 300;
  char buffer[kEnough];
  const int decimals = std::min(layout.decimals, kMostDecimals);
  const std::to_chars_result end =
      std::to_chars(buffer, buffer + kEnough, number, std::chars_format::fixed, decimals);
  return {buffer, end.ptr};
}

std::string grouped(std::string digits) {
  constexpr std::size_t kGroup = 3;
  for (std::size_t at = digits.size(); at > kGroup;) {
    at -= kGroup;
    digits.insert(at, ",");
  }
  return digits;
}

std::string plain(double number, const Layout& layout) {
  const std::string digits = digitsOf(number, layout);
  const std::size_t point = std::min(digits.find('.'), digits.size());
  std::string whole = digits.substr(0, point);
  std::string decimals = digits.substr(std::min(point + 1, digits.size()));
  while (static_cast<int>(decimals.size()) > layout.sureDecimals && decimals.ends_with('0'))
    decimals.pop_back();
  if (whole == "0" && layout.wholeDigits == 0) whole.clear();
  const auto sure = static_cast<std::size_t>(layout.wholeDigits);
  if (whole.size() < sure) whole.insert(0, sure - whole.size(), '0');
  if (layout.grouped) whole = grouped(whole);
  return decimals.empty() ? whole : whole + "." + decimals;
}

std::string withExponent(double number, const Layout& layout) {
  int exponent = number == 0 ? 0 : static_cast<int>(std::floor(std::log10(number)));
  std::string mantissa = plain(number / std::pow(10, exponent), layout);
  if (mantissa.starts_with("10")) mantissa = plain(number / std::pow(10, ++exponent), layout);
  std::string digits = std::to_string(std::abs(exponent));
  const auto sure = static_cast<std::size_t>(layout.exponentDigits);
  if (digits.size() < sure) digits.insert(0, sure - digits.size(), '0');
  const char* sign = layout.exponentPlus ? "E+" : "E";
  return mantissa + (exponent < 0 ? "E-" : sign) + digits;
}

}  // namespace

std::string formatted(double number, std::string_view pattern) {
  if (!std::isfinite(number)) return std::isnan(number) ? "NaN" : number < 0 ? "-INF" : "INF";
  const std::vector<std::string_view> parts = sections(pattern);
  const bool negative = number < 0;
  const std::size_t wanted = number == 0 ? 2 : static_cast<std::size_t>(negative ? 1 : 0);
  const std::string_view chosen = wanted < parts.size() ? parts[wanted] : parts[0];
  const Layout layout = LayoutReader(chosen).read();
  const double size = std::abs(number) * (layout.percent ? 100 : 1);
  std::string sign;
  if (layout.plus) sign = negative ? "-" : "+";
  if (layout.minus && negative) sign = "-";
  return sign + layout.before +
         (layout.exponent ? withExponent(size, layout) : plain(size, layout)) + layout.after;
}

}  // namespace runner
