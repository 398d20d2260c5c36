#include "runner/syntax/preprocessor.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "runner/syntax/conditions.h"
#include "runner/syntax/expression_parser.h"
#include "runner/text/diagnostic.h"
#include "runner/text/text.h"

namespace runner {
namespace {

using Kind = Token::Kind;

bool endsLine(const Token& token) {
  return token.kind == Kind::endOfLine || token.kind == Kind::end;
}

class Preprocessor {
 public:
  Preprocessor(std::vector<Token> tokens, double hostVersion)
      : tokens_(std::move(tokens)), known_(platformValues(hostVersion)) {}

  std::vector<Token> run(bool* open) {
    while (tokens_[at_].kind != Kind::end) line();
    kept_.push_back(tokens_[at_]);
    if (open != nullptr) *open = !branches_.empty();
    if (open == nullptr && !branches_.empty())
      refuse(branches_.back().place, "This #If has no #Endif.");
    return std::move(kept_);
  }

 private:
  /// An "#If" that is open.
  struct Branch {
    Place place;
    bool reached;         // whether what stands around it counts
    bool taken;           // whether a branch of it was taken already
    bool counts;          // whether the branch that is being read does
    bool isLast = false;  // behind #Else
  };
  using Directive = void (Preprocessor::*)(const Token& word);
  struct Row {
    std::string_view word;
    Directive directive;
  };

  [[nodiscard]] bool counts() const { return branches_.empty() || branches_.back().counts; }

  void line() {
    if (tokens_[at_].is("#")) {
      directive();
      return;
    }
    const bool kept = counts();
    if (kept) learn();
    for (;; ++at_) {
      const bool last = endsLine(tokens_[at_]);
      if (tokens_[at_].kind == Kind::end) return;
      if (kept) kept_.push_back(tokens_[at_]);
      if (!last) continue;
      ++at_;
      return;
    }
  }

  // What a line that counts says about constants. Those of a method are known as far as it goes.
  void learn() {
    static constexpr std::string_view kModifiers[] = {"public", "protected", "private", "global",
                                                      "shared"};
    std::size_t at = at_;
    while (std::any_of(std::begin(kModifiers), std::end(kModifiers),
                       [&](std::string_view modifier) { return tokens_[at].is(modifier); }))
      ++at;
    const bool ends = tokens_[at].is("end");
    const Token& word = tokens_[ends ? at + 1 : at];
    const bool isMethod = word.is("sub") || word.is("function");
    if (isMethod && ends && outside_) known_ = *std::exchange(outside_, std::nullopt);
    if (isMethod && !ends) outside_ = known_;
    if (word.is("const") && !ends) learnConstant(at + 1);
  }

  // What is wrong with a constant is said when the program is read; here it isn't known, as one
  // whose value has to be computed.
  void learnConstant(std::size_t at) {
    const std::string key = tokens_[at].key;
    while (!endsLine(tokens_[at]) && !tokens_[at].is("=")) ++at;
    if (key.empty() || endsLine(tokens_[at])) return;
    std::optional<PlatformValue>& value = known_[key];
    try {
      value = valueOf(*expressionFrom(at + 1, nullptr), known_);
    } catch (const Problem&) {
      value.reset();
    }
  }

  // The expression of a line from a token on. @param end receives where it ends; nullable.
  ExpressionPtr expressionFrom(std::size_t start, std::size_t* end) {
    std::size_t at = start;
    while (!endsLine(tokens_[at]) && !tokens_[at].is("then")) ++at;
    std::vector<Token> tokens(tokens_.begin() + static_cast<std::ptrdiff_t>(start),
                              tokens_.begin() + static_cast<std::ptrdiff_t>(at + 1));
    tokens.push_back(tokens_.back());
    TokenReader reader(std::move(tokens));
    ExpressionPtr expression = ExpressionParser(reader).expression();
    const bool ended = end == nullptr ? reader.atEndOfLine()
                                      : reader.current().is("then") || endsLine(reader.current());
    if (!ended) reader.fail(end == nullptr ? "the end of the line" : "\"Then\"");
    if (end != nullptr) *end = at;
    return expression;
  }

  void directive() {
    static constexpr Row kDirectives[] = {
        {"if", &Preprocessor::ifDirective}, {"elseif", &Preprocessor::elseIf},
        {"else", &Preprocessor::otherwise}, {"endif", &Preprocessor::endIf},
        {"end", &Preprocessor::endIf},      {"pragma", &Preprocessor::anything},
        {"tag", &Preprocessor::anything},
    };
    const Token sign = tokens_[at_++];
    const Token word = tokens_[at_];
    const auto* const found = std::find_if(std::begin(kDirectives), std::end(kDirectives),
                                           [&word](const Row& row) { return word.is(row.word); });
    if (found == std::end(kDirectives)) {
      refuse(span(sign.place, word.place),
             "\"#\" begins #If, #ElseIf, #Else, #Endif, #Pragma or #tag.");
    }
    ++at_;
    (this->*found->directive)(word);
    if (!endsLine(tokens_[at_])) {
      refuse(tokens_[at_].place,
             "\"#" + word.text + "\" has a line of its own: what follows it stands on the next.");
    }
    if (tokens_[at_].kind == Kind::endOfLine) ++at_;
  }

  bool condition() {
    const ExpressionPtr expression = expressionFrom(at_, &at_);
    if (tokens_[at_].is("then")) ++at_;
    return isTrue(*expression, known_);
  }

  // The condition of the line, which nobody looks at where it decides nothing.
  bool decides(bool asked) {
    if (asked) return condition();
    skipLine();
    return false;
  }

  void ifDirective(const Token& word) {
    const bool reached = counts();
    const bool value = decides(reached);
    branches_.push_back({word.place, reached, value, value});
  }
  Branch& open(const Token& word) {
    if (branches_.empty() || branches_.back().isLast)
      refuse(word.place, "\"#" + word.text + "\" belongs to no #If here.");
    return branches_.back();
  }
  void elseIf(const Token& word) {
    Branch& branch = open(word);
    branch.counts = decides(branch.reached && !branch.taken);
    branch.taken = branch.taken || branch.counts;
  }
  void otherwise(const Token& word) {
    Branch& branch = open(word);
    branch.counts = branch.reached && !branch.taken;
    branch.isLast = true;
  }
  void endIf(const Token& word) {
    if (branches_.empty()) refuse(word.place, "\"#" + word.text + "\" belongs to no #If here.");
    branches_.pop_back();
    if (word.is("end") && tokens_[at_].is("if")) ++at_;
  }
  void anything(const Token& /*word*/) { skipLine(); }
  void skipLine() {
    while (!endsLine(tokens_[at_])) ++at_;
  }

  std::vector<Token> tokens_;
  std::size_t at_ = 0;
  std::vector<Token> kept_;
  std::vector<Branch> branches_;
  KnownValues known_;
  std::optional<KnownValues> outside_;  // of the method that is being read
};

}  // namespace

std::vector<Token> preprocessed(std::vector<Token> tokens, double hostVersion, bool* open) {
  return Preprocessor(std::move(tokens), hostVersion).run(open);
}

}  // namespace runner
