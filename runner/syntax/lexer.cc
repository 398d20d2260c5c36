#include "runner/syntax/lexer.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <utility>

#include "runner/text/diagnostic.h"
#include "runner/text/text.h"

namespace runner {
namespace {

using Kind = Token::Kind;
using host::Value;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool beginsWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || (c & 0x80) != 0;
}

bool isSpace(char c) { return c == ' ' || c == '\t'; }

struct Prefix {
  char letter;
  int base;
  const char* digits;
};
constexpr Prefix kPrefixes[] = {
    {'h', 16, "hexadecimal"}, {'c', 16, "hexadecimal"}, {'b', 2, "binary"}, {'o', 8, "octal"}};

// The longest first.
constexpr std::string_view kSigns[] = {"<=", ">=", "<>", "+=", "-=", "*=", "/=", "(",
                                       ")",  ",",  ".",  "+",  "-",  "*",  "/",  "\\",
                                       "^",  "=",  "<",  ">",  ":",  "#"};

// What text processors make of straight quotes.
constexpr std::string_view kCurlyQuotes[] = {"“", "”", "„", "‘", "’", "«", "»"};

bool isCurlyQuote(std::string_view character) {
  return std::find(std::begin(kCurlyQuotes), std::end(kCurlyQuotes), character) !=
         std::end(kCurlyQuotes);
}

// The narrowest type that has the number, none below the language's own integer.
Value wholeNumber(std::uint64_t number) {
  if (number <= static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max()))
    return static_cast<std::int32_t>(number);
  if (number <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
    return static_cast<std::int64_t>(number);
  return number;
}

class Lexer {
 public:
  explicit Lexer(const Source& source) : text_(source.text()) {}

  std::vector<Token> run() {
    refuseBrokenText();
    while (at_ < text_.size()) token();
    add(Kind::endOfLine, at_);
    add(Kind::end, at_);
    return std::move(tokens_);
  }

 private:
  void refuseBrokenText() {
    const std::size_t bad = firstBadByte(text_);
    if (bad != std::string_view::npos) refuse({bad, bad + 1}, "This byte is no text in UTF-8.");
  }

  void token() {
    const char c = text_[at_];
    if (isSpace(c)) {
      ++at_;
    } else if (c == '\n' || c == '\r') {
      endOfLine();
    } else if (c == '\'' || text_.substr(at_, 2) == "//") {
      skipLine();
    } else if (c == '"') {
      text();
    } else if (isDigit(c) || (c == '.' && isDigit(peek(1)))) {
      number();
    } else if (c == '&') {
      prefixedNumber();
    } else if (continuesWord(at_)) {
      word();
    } else {
      sign();
    }
  }

  [[nodiscard]] char peek(std::size_t offset) const {
    return at_ + offset < text_.size() ? text_[at_ + offset] : '\0';
  }

  // Whether a letter stands there; among the signs beyond ASCII are quotes.
  [[nodiscard]] bool continuesWord(std::size_t at) const {
    if (!beginsWord(text_[at])) return false;
    return (text_[at] & 0x80) == 0 || !isCurlyQuote(middle(text_.substr(at, 4), 0, 1));
  }

  void skipLine() { at_ = std::min(text_.find_first_of("\r\n", at_), text_.size()); }

  void endOfLine() {
    const std::size_t begin = at_;
    at_ += text_.substr(at_, 2) == "\r\n" ? 2 : 1;
    add(Kind::endOfLine, begin);
  }

  void word() {
    const std::size_t begin = at_;
    while (at_ < text_.size() && (continuesWord(at_) || isDigit(text_[at_]))) ++at_;
    const std::string_view found = text_.substr(begin, at_ - begin);
    if (found == "_") {
      continueLine(begin);
    } else if (folded(found) == "rem") {
      skipLine();
    } else {
      add(Kind::word, begin, std::string(found));
    }
  }

  // The line goes on behind its end; a comment may stand before that.
  void continueLine(std::size_t begin) {
    while (isSpace(peek(0))) ++at_;
    if (peek(0) == '\'' || text_.substr(at_, 2) == "//") skipLine();
    if (at_ < text_.size() && peek(0) != '\n' && peek(0) != '\r')
      refuse({begin, begin + 1}, "Nothing may follow the \"_\" that continues a line.");
    at_ += text_.substr(at_, 2) == "\r\n" ? 2 : 1;
    at_ = std::min(at_, text_.size());
  }

  void text() {
    const std::size_t begin = at_++;
    std::string content;
    for (;; ++at_) {
      const char c = peek(0);
      if (at_ >= text_.size() || c == '\n' || c == '\r')
        refuse({begin, at_}, "This text has no closing quote (\").");
      if (c == '"' && peek(1) != '"') break;
      if (c == '"') ++at_;
      content += c;
    }
    ++at_;
    add(Kind::text, begin, std::move(content));
  }

  void number() {
    const std::size_t begin = at_;
    skipDigits();
    bool whole = true;
    if (peek(0) == '.' && isDigit(peek(1))) {
      whole = false;
      ++at_;
      skipDigits();
    }
    const std::size_t exponent = peek(1) == '+' || peek(1) == '-' ? 2 : 1;
    if ((peek(0) == 'e' || peek(0) == 'E') && isDigit(peek(exponent))) {
      whole = false;
      at_ += exponent;
      skipDigits();
    }
    if (at_ < text_.size() && beginsWord(text_[at_])) {
      const std::size_t bad = at_;
      refuse({bad, bad + middle(text_.substr(bad), 0, 1).size()},
             "A number ends here, and a name can't follow it directly.");
    }
    add(Kind::number, begin, "", whole ? integer(begin, begin, 10) : real(begin));
  }

  void skipDigits() {
    while (isDigit(peek(0))) ++at_;
  }

  void prefixedNumber() {
    const std::size_t begin = at_;
    const auto letter = static_cast<char>(peek(1) | 0x20);
    const auto* const prefix =
        std::find_if(std::begin(kPrefixes), std::end(kPrefixes),
                     [letter](const Prefix& p) { return p.letter == letter; });
    if (prefix == std::end(kPrefixes)) {
      refuse({begin, begin + 1},
             "\"&\" begins a number: &h (hexadecimal), &b (binary), &o (octal) or &c (a color). "
             "Texts are "
             "joined with \"+\".");
    }
    at_ += 2;
    const std::size_t digits = at_;
    while (at_ < text_.size() && (isDigit(text_[at_]) || beginsWord(text_[at_]))) ++at_;
    if (letter == 'c') {
      constexpr std::size_t kDigitsOfColor = 6;
      if (at_ - digits != kDigitsOfColor)
        refuse({begin, at_}, "A color is written with six hexadecimal digits: &cFF8000.");
      const Value rgb = integer(begin, digits, prefix->base, prefix->digits);
      add(Kind::number, begin, "", host::Color{static_cast<std::uint32_t>(std::get<int>(rgb))});
      return;
    }
    add(Kind::number, begin, "", integer(begin, digits, prefix->base, prefix->digits));
    tokens_.back().bits = true;
  }

  Value integer(std::size_t begin, std::size_t digits, int base, const char* what = "decimal") {
    std::uint64_t value = 0;
    const char* const end = text_.data() + at_;
    const auto [stop, error] = std::from_chars(text_.data() + digits, end, value, base);
    if (error == std::errc::result_out_of_range)
      refuse({begin, at_}, "This number is too large for every integer type.");
    if (error != std::errc() || stop != end)
      refuse({begin, at_}, "These are no " + std::string(what) + " digits.");
    return wholeNumber(value);
  }

  Value real(std::size_t begin) {
    double value = 0;
    const auto [stop, error] = std::from_chars(text_.data() + begin, text_.data() + at_, value);
    if (error != std::errc())
      refuse({begin, at_}, "This number is too large or too small for a Double.");
    return value;
  }

  void sign() {
    const std::string_view rest = text_.substr(at_);
    const auto* const found =
        std::find_if(std::begin(kSigns), std::end(kSigns),
                     [rest](std::string_view sign) { return rest.starts_with(sign); });
    const std::size_t begin = at_;
    if (found == std::end(kSigns)) {
      const std::string_view bad = middle(rest, 0, 1);
      if (isCurlyQuote(bad)) {
        refuse({begin, begin + bad.size()}, "This is a curly quote (" + std::string(bad) +
                                                "). Texts stand in straight ones (\").");
      }
      refuse({begin, begin + bad.size()}, "The language has no sign \"" + std::string(bad) + "\".");
    }
    at_ += found->size();
    add(Kind::sign, begin, std::string(*found));
  }

  void add(Kind kind, std::size_t begin, std::string text = "", Value value = {}) {
    std::string key = kind == Kind::word || kind == Kind::sign ? folded(text) : std::string();
    tokens_.push_back({kind, {begin, at_}, std::move(text), std::move(key), std::move(value)});
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::vector<Token> tokens_;
};

}  // namespace

std::vector<Token> tokens(const Source& source) { return Lexer(source).run(); }

}  // namespace runner
