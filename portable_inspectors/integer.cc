// Arithmetic, comparison and casts of integers and booleans. Results beyond 64 bits are errors.
#include <limits>
#include <string_view>

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "portable_inspectors/checked_arithmetic.h"
#include "portable_inspectors/iterated_by_parameter.h"
#include "portable_inspectors/numeral.h"
#include "portable_inspectors/text.h"

namespace {

integer Add(integer const& left, integer const& right) {
  return CheckedAdd<IntegerOverflow>(left, right);
}
integer Subtract(integer const& left, integer const& right) {
  return CheckedSubtract<IntegerOverflow>(left, right);
}
integer Multiply(integer const& left, integer const& right) {
  return CheckedMultiply<IntegerOverflow>(left, right);
}
integer Divide(integer const& left, integer const& right) {
  return CheckedDivide<IntegerOverflow>(left, right);
}
integer Modulo(integer const& left, integer const& right) { return CheckedRemainder(left, right); }
boolean Less(integer const& left, integer const& right) { return left < right; }

integer IntegerAsInteger(integer const& number) { return number; }
inspector_string IntegerAsString(integer const& number) { return WriteDecimal(number); }
// The two's complement of a negative number.
inspector_string IntegerAsHexadecimal(integer const& number) {
  return WriteHexadecimal(static_cast<std::uint64_t>(number));
}

inspector_string BooleanAsString(boolean const& value) {
  return Slice(value ? std::string_view("true") : std::string_view("false"));
}
boolean BooleanAsBoolean(boolean const& value) { return value; }

integer absolute_value_of(integer const& number) {
  return number < 0 ? CheckedSubtract<IntegerOverflow>(0, number) : number;
}

// Bit 0 is the lowest, bit 63 the sign.
boolean bit_of(unsigned long long index, integer const& number) {
  if (index >= std::numeric_limits<std::uint64_t>::digits) throw NoSuchObject();
  return (static_cast<std::uint64_t>(number) >> index & 1) != 0;
}

// From 0 up to, not including, the limit.
class BelowIterator {
 public:
  integer First(integer const& limit) {
    next_ = 0;
    return Next(limit);
  }
  integer Next(integer const& limit) {
    if (next_ >= limit) throw NoSuchObject();
    return next_++;
  }

 private:
  integer next_ = 0;
};

using IntegerOperator = Operator2<integer, integer, integer>;

IntegerOperator add(kOperatorAdd, Add, DependsOnlyOnParameters);
IntegerOperator subtract(kOperatorSubtract, Subtract, DependsOnlyOnParameters);
IntegerOperator multiply(kOperatorMultiply, Multiply, DependsOnlyOnParameters);
IntegerOperator divide(kOperatorDivide, Divide, DependsOnlyOnParameters);
IntegerOperator modulo(kOperatorModulo, Modulo, DependsOnlyOnParameters);
RelationEqual<integer, integer> equal(DependsOnlyOnParameters);
Operator2<integer, integer, boolean> less(kOperatorLess, Less, DependsOnlyOnParameters);
Cast<integer, integer> as_integer("integer", IntegerAsInteger, DependsOnlyOnParameters);
Cast<integer, inspector_string> as_string("string", IntegerAsString, DependsOnlyOnParameters);
Cast<integer, inspector_string> as_hexadecimal("hexadecimal", IntegerAsHexadecimal,
                                               DependsOnlyOnParameters);
Property<integer, integer> absolute_value("absolute value", "absolute values", absolute_value_of,
                                          DependsOnlyOnParameters);
NumberedProperty<integer, boolean> bit("bit", "bits", bit_of, DependsOnlyOnParameters);
IteratedGlobalPropertyByParameter<BelowIterator, integer, integer> below("integer below",
                                                                         "integers below",
                                                                         DependsOnlyOnParameters);

RelationEqual<boolean, boolean> boolean_equal(DependsOnlyOnParameters);
Cast<boolean, inspector_string> boolean_as_string("string", BooleanAsString,
                                                  DependsOnlyOnParameters);
Cast<boolean, boolean> boolean_as_boolean("boolean", BooleanAsBoolean, DependsOnlyOnParameters);

}  // namespace
