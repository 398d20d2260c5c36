#include "runner/syntax/conditions.h"

#include <compare>
#include <type_traits>

#include "runner/text/diagnostic.h"
#include "runner/text/text.h"

namespace runner {
namespace {

const char* nameOf(const PlatformValue& value) {
  constexpr const char* kNames[] = {"True or False", "a number", "a text"};
  return kNames[value.index()];
}

std::partial_ordering order(bool left, bool right) { return left <=> right; }
std::partial_ordering order(double left, double right) { return left <=> right; }
std::partial_ordering order(const std::string& left, const std::string& right) {
  return compareText(left, right);
}

// nullopt for an operator that compares nothing.
std::optional<bool> holds(Operator op, std::partial_ordering order) {
  switch (op) {
    case Operator::equal:
      return std::is_eq(order);
    case Operator::different:
      return std::is_neq(order);
    case Operator::less:
      return std::is_lt(order);
    case Operator::lessOrEqual:
      return std::is_lteq(order);
    case Operator::greater:
      return std::is_gt(order);
    case Operator::greaterOrEqual:
      return std::is_gteq(order);
    default:
      return std::nullopt;
  }
}

// An expression at its place, among what is known.
class Evaluation {
 public:
  Evaluation(const Place& place, const KnownValues& known) : place_(place), known_(known) {}

  PlatformValue operator()(const Literal& literal) const {
    return std::visit([this](const auto& value) { return valueOf(value); },
                      static_cast<const host::AnyValue&>(literal.value));
  }
  PlatformValue operator()(const Name& name) const {
    const auto found = known_.find(name.word.key);
    if (found == known_.end()) {
      refuse(place_, "#If doesn't know \"" + name.word.text +
                         "\". It knows the host's constants, such as TargetLinux, DebugBuild and "
                         "XojoVersion, and the program's own that stand above it.");
    }
    if (!found->second) {
      refuse(place_, "#If can't know the value of \"" + name.word.text +
                         "\". It knows constants that are numbers, texts, True, False or other "
                         "such constants.");
    }
    return *found->second;
  }
  PlatformValue operator()(const Unary& unary) const {
    if (unary.op == Operator::opposite) return !isTrue(*unary.operand, known_);
    const PlatformValue value = runner::valueOf(*unary.operand, known_);
    if (unary.op == Operator::negate && std::holds_alternative<double>(value))
      return -std::get<double>(value);
    refuseCondition();
  }
  PlatformValue operator()(const Binary& binary) const {
    switch (binary.op) {
      case Operator::bothOf:
        return both(binary, [](bool left, bool right) { return left && right; });
      case Operator::eitherOf:
        return both(binary, [](bool left, bool right) { return left || right; });
      case Operator::oneOf:
        return both(binary, [](bool left, bool right) { return left != right; });
      default:
        return compared(binary);
    }
  }
  template <class Other>
  PlatformValue operator()(const Other& /*other*/) const {
    refuseCondition();
  }

 private:
  [[noreturn]] void refuseCondition() const {
    refuse(place_,
           "A condition of #If is made of True, False, numbers, texts and constants such as "
           "TargetLinux and XojoVersion, with =, <>, <, >, <=, >=, And, Or, Xor, Not and "
           "parentheses.");
  }

  template <class Held>
  PlatformValue valueOf(const Held& value) const {
    if constexpr (std::is_same_v<Held, std::int8_t>) return value != 0;
    if constexpr (std::is_arithmetic_v<Held>) return static_cast<double>(value);
    if constexpr (std::is_same_v<Held, std::string>) return value;
    refuseCondition();
  }

  // Both are looked at, so that neither hides a mistake in the other.
  template <class Join>
  PlatformValue both(const Binary& binary, const Join& join) const {
    const bool left = isTrue(*binary.left, known_);
    const bool right = isTrue(*binary.right, known_);
    return join(left, right);
  }

  PlatformValue compared(const Binary& binary) const {
    const PlatformValue left = runner::valueOf(*binary.left, known_);
    const PlatformValue right = runner::valueOf(*binary.right, known_);
    if (left.index() != right.index()) {
      refuse(place_, std::string("#If compares what is alike, but this is ") + nameOf(left) +
                         " and " + nameOf(right) + ".");
    }
    const auto ordered = [&right](const auto& held) {
      return order(held, std::get<std::decay_t<decltype(held)>>(right));
    };
    const std::optional<bool> result = holds(binary.op, std::visit(ordered, left));
    if (!result) refuseCondition();
    return *result;
  }

  const Place& place_;
  const KnownValues& known_;
};

}  // namespace

KnownValues platformValues(double hostVersion) {
  KnownValues known;
  for (const PlatformConstant& constant : platformConstants(hostVersion))
    known.emplace(folded(constant.name), constant.value);
  return known;
}

PlatformValue valueOf(const Expression& expression, const KnownValues& known) {
  return std::visit(Evaluation(expression.place, known), expression.what);
}

bool isTrue(const Expression& condition, const KnownValues& known) {
  const PlatformValue value = valueOf(condition, known);
  if (const bool* const truth = std::get_if<bool>(&value)) return *truth;
  refuse(condition.place, std::string("A condition of #If is True or False, but this is ") +
                              nameOf(value) + ". Compare it: XojoVersion >= 2019.02");
}

}  // namespace runner
