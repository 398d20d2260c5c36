#include "host/declaration.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <utility>

namespace host {
namespace {

char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

bool beginsWord(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_'; }

bool continuesWord(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

// Words that have a meaning of their own and can't be names.
constexpr std::string_view kReserved[] = {"as", "assigns", "byref", "byval"};

bool isReserved(std::string_view word) {
  return std::any_of(std::begin(kReserved), std::end(kReserved),
                     [word](std::string_view reserved) { return sameName(word, reserved); });
}

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) { advance(); }

  Declaration parse() {
    Declaration declaration;
    declaration.name = name("the name of a method");
    if (accept("(")) declaration.parameters = parameters();
    if (accept("as")) declaration.result = type();
    if (!token_.empty()) fail(declaration.result ? "the end" : "\"as\" or the end");
    return declaration;
  }

 private:
  std::vector<Parameter> parameters() {
    std::vector<Parameter> list;
    if (accept(")")) return list;
    do {
      if (!list.empty() && list.back().assigns) fail("no parameter after the one that assigns");
      list.push_back(parameter());
    } while (accept(","));
    expect(")", "\",\" or \")\"");
    return list;
  }

  Parameter parameter() {
    Parameter parameter;
    parameter.assigns = accept("assigns");
    parameter.byRef = accept("byref");
    if (!parameter.byRef) accept("byval");
    parameter.name = name("the name of a parameter");
    const bool array = emptyParentheses();
    expect("as", "\"as\"");
    parameter.type = type();
    if (array && parameter.type.array) fail("one pair of parentheses, not two");
    parameter.type.array = parameter.type.array || array;
    return parameter;
  }

  Type type() {
    Type type;
    type.name = name("the name of a type");
    type.array = emptyParentheses();
    return type;
  }

  bool emptyParentheses() {
    if (!accept("(")) return false;
    expect(")", "\")\"");
    return true;
  }

  std::string name(const char* what) {
    if (token_.empty() || !beginsWord(token_.front()) || isReserved(token_)) fail(what);
    std::string found(token_);
    advance();
    return found;
  }

  bool accept(std::string_view wanted) {
    if (!sameName(token_, wanted)) return false;
    advance();
    return true;
  }

  void expect(std::string_view wanted, const char* what) {
    if (!accept(wanted)) fail(what);
  }

  // The next word, the next other character, or nothing at the end.
  void advance() {
    position_ += token_.size();
    while (position_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[position_])))
      ++position_;
    const std::string_view rest = text_.substr(position_);
    std::size_t size = rest.empty() ? 0 : 1;
    if (size != 0 && beginsWord(rest.front()))
      while (size < rest.size() && continuesWord(rest[size])) ++size;
    token_ = rest.substr(0, size);
  }

  [[noreturn]] void fail(const char* expected) const {
    std::string found = "the end";
    if (!token_.empty()) found = "\"" + std::string(token_) + "\"";
    throw std::invalid_argument("declaration \"" + std::string(text_) + "\": expected " + expected +
                                " at column " + std::to_string(position_ + 1) + ", found " + found);
  }

  std::string_view text_;
  std::string_view token_;
  std::size_t position_ = 0;  // of the token
};

}  // namespace

bool sameName(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return lower(a) == lower(b); });
}

bool sameType(const Type& left, const Type& right) {
  return left.array == right.array && sameName(left.name, right.name);
}

bool sameSignature(const Declaration& left, const Declaration& right) {
  const auto sameParameter = [](const Parameter& a, const Parameter& b) {
    return a.byRef == b.byRef && a.assigns == b.assigns && sameType(a.type, b.type);
  };
  if (left.result.has_value() != right.result.has_value()) return false;
  if (left.result && !sameType(*left.result, *right.result)) return false;
  return sameName(left.name, right.name) &&
         std::equal(left.parameters.begin(), left.parameters.end(), right.parameters.begin(),
                    right.parameters.end(), sameParameter);
}

Declaration parseDeclaration(std::string_view text) { return Parser(text).parse(); }

}  // namespace host
