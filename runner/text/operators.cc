#include "runner/text/operators.h"

#include <cstddef>
#include <iterator>

namespace runner {
namespace {

struct Sign {
  Operator op;
  std::string_view sign;
  std::string_view key;
};
// As the operators are numbered.
constexpr Sign kSigns[] = {
    {Operator::add, "+", "+"},           {Operator::subtract, "-", "-"},
    {Operator::multiply, "*", "*"},      {Operator::divide, "/", "/"},
    {Operator::divideWhole, "\\", "\\"}, {Operator::modulo, "Mod", "mod"},
    {Operator::power, "^", "^"},         {Operator::negate, "-", "-"},
    {Operator::equal, "=", "="},         {Operator::different, "<>", "<>"},
    {Operator::less, "<", "<"},          {Operator::greater, ">", ">"},
    {Operator::lessOrEqual, "<=", "<="}, {Operator::greaterOrEqual, ">=", ">="},
    {Operator::is, "Is", "is"},          {Operator::bothOf, "And", "and"},
    {Operator::eitherOf, "Or", "or"},    {Operator::oneOf, "Xor", "xor"},
    {Operator::opposite, "Not", "not"},
};

constexpr bool areInOrder() {
  for (std::size_t i = 0; i < std::size(kSigns); ++i)
    if (static_cast<std::size_t>(kSigns[i].op) != i) return false;
  return true;
}
static_assert(areInOrder());

}  // namespace

std::string_view signOf(Operator op) { return kSigns[static_cast<std::size_t>(op)].sign; }

std::string_view keyOf(Operator op) { return kSigns[static_cast<std::size_t>(op)].key; }

}  // namespace runner
