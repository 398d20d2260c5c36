#include "runner/syntax/preprocessor.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "runner/syntax/expression_parser.h"
#include "runner/text/diagnostic.h"
#include "runner/text/targets.h"
#include "runner/text/text.h"

namespace runner {
namespace {

using Kind = Token::Kind;

bool endsLine(const Token& token) {
  return token.kind == Kind::endOfLine || token.kind == Kind::end;
}

// --- conditions

bool isTrue(const Expression& condition);

[[noreturn]] void refuseCondition(const Place& place) {
  refuse(place,
         "A condition of #If is made of True, False and names such as TargetLinux, with And, Or "
         "and Not.");
}

bool valueOf(const Literal& literal, const Place& place) {
  const auto* const boolean = std::get_if<std::int8_t>(&literal.value);
  if (boolean == nullptr) refuseCondition(place);
  return *boolean != 0;
}

bool valueOf(const Name& name, const Place& place) {
  for (const PlatformConstant& constant : platformConstants())
    if (folded(constant.name) == name.word.key) return constant.value;
  refuseCondition(place);
}

bool valueOf(const Unary& unary, const Place& place) {
  if (unary.op != Operator::opposite) refuseCondition(place);
  return !isTrue(*unary.operand);
}

bool valueOf(const Binary& binary, const Place& place) {
  const bool left = isTrue(*binary.left);
  const bool right = isTrue(*binary.right);
  switch (binary.op) {
    case Operator::bothOf:
      return left && right;
    case Operator::eitherOf:
      return left || right;
    case Operator::oneOf:
    case Operator::different:
      return left != right;
    case Operator::equal:
      return left == right;
    default:
      refuseCondition(place);
  }
}

template <class Other>
bool valueOf(const Other& /*other*/, const Place& place) {
  refuseCondition(place);
}

bool isTrue(const Expression& condition) {
  return std::visit([&](const auto& what) { return valueOf(what, condition.place); },
                    condition.what);
}

// --- lines

class Preprocessor {
 public:
  explicit Preprocessor(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

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
    for (;; ++at_) {
      const bool last = endsLine(tokens_[at_]);
      if (tokens_[at_].kind == Kind::end) return;
      if (kept) kept_.push_back(tokens_[at_]);
      if (!last) continue;
      ++at_;
      return;
    }
  }

  void directive() {
    static constexpr Row kDirectives[] = {
        {"if", &Preprocessor::ifDirective}, {"elseif", &Preprocessor::elseIf},
        {"else", &Preprocessor::otherwise}, {"endif", &Preprocessor::endIf},
        {"end", &Preprocessor::endIf},      {"pragma", &Preprocessor::nothing},
        {"tag", &Preprocessor::nothing},
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
    while (!endsLine(tokens_[at_])) ++at_;
    if (tokens_[at_].kind == Kind::endOfLine) ++at_;
  }

  bool condition() {
    std::vector<Token> tokens;
    for (; !endsLine(tokens_[at_]) && !tokens_[at_].is("then"); ++at_)
      tokens.push_back(tokens_[at_]);
    Token end = tokens_[at_];
    end.kind = Kind::end;
    end.key.clear();
    tokens.push_back(std::move(end));
    TokenReader reader(std::move(tokens));
    const ExpressionPtr expression = ExpressionParser(reader).expression();
    if (!reader.atEnd()) reader.fail("\"Then\"");
    return isTrue(*expression);
  }

  void ifDirective(const Token& word) {
    const bool reached = counts();
    const bool value = reached && condition();
    branches_.push_back({word.place, reached, value, value});
  }
  Branch& open(const Token& word) {
    if (branches_.empty() || branches_.back().isLast)
      refuse(word.place, "\"#" + word.text + "\" belongs to no #If here.");
    return branches_.back();
  }
  void elseIf(const Token& word) {
    Branch& branch = open(word);
    branch.counts = branch.reached && !branch.taken && condition();
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
  }
  void nothing(const Token& /*word*/) {}

  std::vector<Token> tokens_;
  std::size_t at_ = 0;
  std::vector<Token> kept_;
  std::vector<Branch> branches_;
};

}  // namespace

std::vector<Token> preprocessed(std::vector<Token> tokens, bool* open) {
  return Preprocessor(std::move(tokens)).run(open);
}

}  // namespace runner
