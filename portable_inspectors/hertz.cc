// Frequencies: units, arithmetic, comparison, casts.
#include "frame/registration.h"
#include "portable_inspectors/checked_arithmetic.h"
#include "portable_inspectors/numeral.h"
#include "portable_inspectors/text.h"

namespace {

template <std::int64_t count>
hertz Unit() {
  return {count};
}

hertz Add(hertz const& left, hertz const& right) {
  return {CheckedAdd<FrequencyOverflow>(left.count, right.count)};
}
hertz Subtract(hertz const& left, hertz const& right) {
  return {CheckedSubtract<FrequencyOverflow>(left.count, right.count)};
}
hertz Multiply(hertz const& left, integer const& right) {
  return {CheckedMultiply<FrequencyOverflow>(left.count, right)};
}
hertz MultiplyFrom(integer const& left, hertz const& right) { return Multiply(right, left); }
hertz Divide(hertz const& left, integer const& right) {
  return {CheckedDivide<FrequencyOverflow>(left.count, right)};
}
integer Ratio(hertz const& left, hertz const& right) {
  return CheckedDivide<IntegerOverflow>(left.count, right.count);
}
boolean Less(hertz const& left, hertz const& right) { return left.count < right.count; }

// The number alone, as the evaluator shows a frequency.
inspector_string HertzAsString(hertz const& frequency) { return WriteDecimal(frequency.count); }
integer HertzAsInteger(hertz const& frequency) { return frequency.count; }
hertz IntegerAsHertz(integer const& count) { return {count}; }

GlobalProperty<hertz> unit("hertz", "hertzes", Unit<1>, DependsOnlyOnParameters);
GlobalProperty<hertz> kilohertz("kilohertz", "kilohertzes", Unit<1'000>, DependsOnlyOnParameters);
GlobalProperty<hertz> megahertz("megahertz", "megahertzes", Unit<1'000'000>,
                                DependsOnlyOnParameters);
GlobalProperty<hertz> gigahertz("gigahertz", "gigahertzes", Unit<1'000'000'000>,
                                DependsOnlyOnParameters);
Operator2<hertz, hertz, hertz> add(kOperatorAdd, Add, DependsOnlyOnParameters);
Operator2<hertz, hertz, hertz> subtract(kOperatorSubtract, Subtract, DependsOnlyOnParameters);
Operator2<hertz, integer, hertz> multiply(kOperatorMultiply, Multiply, DependsOnlyOnParameters);
Operator2<integer, hertz, hertz> multiply_from(kOperatorMultiply, MultiplyFrom,
                                               DependsOnlyOnParameters);
Operator2<hertz, integer, hertz> divide(kOperatorDivide, Divide, DependsOnlyOnParameters);
Operator2<hertz, hertz, integer> ratio(kOperatorDivide, Ratio, DependsOnlyOnParameters);
RelationEqual<hertz, hertz> equal(DependsOnlyOnParameters);
Operator2<hertz, hertz, boolean> less(kOperatorLess, Less, DependsOnlyOnParameters);
Cast<hertz, inspector_string> as_string("string", HertzAsString, DependsOnlyOnParameters);
Cast<hertz, integer> as_integer("integer", HertzAsInteger, DependsOnlyOnParameters);
Cast<integer, hertz> integer_as_hertz("hertz", IntegerAsHertz, DependsOnlyOnParameters);

}  // namespace
