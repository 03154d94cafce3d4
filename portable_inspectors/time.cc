// The types "time" and "time interval": now, arithmetic, comparison, text.
#include <optional>
#include <string>

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "portable_inspectors/checked_arithmetic.h"
#include "portable_inspectors/machine_time.h"
#include "portable_inspectors/moment.h"
#include "portable_inspectors/text.h"
#include "portable_inspectors/time_interval_text.h"

namespace {

using Text = inspector_string;

template <std::int64_t microseconds>
time_interval Unit() {
  return time_interval(microseconds);
}

template <class L, class R, class Result>
Result Add(L const& left, R const& right) {
  return left + right;
}
template <class L, class R, class Result>
Result Subtract(L const& left, R const& right) {
  return left - right;
}
template <class L, class R, class Result>
Result Multiply(L const& left, R const& right) {
  return left * right;
}
template <class L, class R, class Result>
Result Divide(L const& left, R const& right) {
  return left / right;
}
time_interval Modulo(time_interval const& left, time_interval const& right) { return left % right; }
template <class T>
boolean Less(T const& left, T const& right) {
  return left < right;
}

moment time_named(unsigned char const* start, unsigned long length) {
  return ReadMoment(View(start, length));
}
moment StringAsTime(Text const& string) { return ReadMoment(View(string)); }
Text TimeAsString(moment const& time) { return CopyText(WriteMoment(time)); }

time_interval StringAsTimeInterval(Text const& string) {
  std::optional<time_interval> const interval = TextToTimeInterval(View(string));
  if (!interval) throw NoSuchObject();
  return *interval;
}
Text TimeIntervalAsString(time_interval const& interval) {
  return CopyText(TimeIntervalToText(interval));
}

time_interval absolute_value_of(time_interval const& interval) {
  return interval < time_interval() ? time_interval() - interval : interval;
}

Type<moment, kPlainBytes> time_type;
GlobalProperty<moment> now("now", "nows", moment_now, nullptr);
GlobalProperty<moment> unix_epoch("unix epoch", "unix epochs", january_1_1970,
                                  DependsOnlyOnParameters);
NamedGlobalProperty<moment> time("time", "times", time_named, nullptr);
Cast<Text, moment> string_as_time("time", StringAsTime, nullptr);
Cast<moment, Text> time_as_string("string", TimeAsString, nullptr);
RelationEqual<moment, moment> time_equal(DependsOnlyOnParameters);
Operator2<moment, moment, boolean> time_less(kOperatorLess, Less, DependsOnlyOnParameters);
Operator2<moment, time_interval, moment> time_add(kOperatorAdd, Add, DependsOnlyOnParameters);
Operator2<time_interval, moment, moment> add_time(kOperatorAdd, Add, DependsOnlyOnParameters);
Operator2<moment, time_interval, moment> time_subtract(kOperatorSubtract, Subtract,
                                                       DependsOnlyOnParameters);
Operator2<moment, moment, time_interval> time_difference(kOperatorSubtract, Subtract,
                                                         DependsOnlyOnParameters);

Type<time_interval, kPlainBytes> interval_type;
GlobalProperty<time_interval> microsecond("microsecond", "microseconds", Unit<1>,
                                          DependsOnlyOnParameters);
GlobalProperty<time_interval> millisecond("millisecond", "milliseconds", Unit<1'000>,
                                          DependsOnlyOnParameters);
GlobalProperty<time_interval> second("second", "seconds", Unit<1'000'000>, DependsOnlyOnParameters);
GlobalProperty<time_interval> minute("minute", "minutes", Unit<60'000'000>,
                                     DependsOnlyOnParameters);
GlobalProperty<time_interval> hour("hour", "hours", Unit<3'600'000'000>, DependsOnlyOnParameters);
GlobalProperty<time_interval> day("day", "days", Unit<86'400'000'000>, DependsOnlyOnParameters);
GlobalProperty<time_interval> week("week", "weeks", Unit<604'800'000'000>, DependsOnlyOnParameters);
Property<time_interval, time_interval> absolute_value("absolute value", "absolute values",
                                                      absolute_value_of, DependsOnlyOnParameters);
Cast<Text, time_interval> string_as_interval("time interval", StringAsTimeInterval,
                                             DependsOnlyOnParameters);
Cast<time_interval, Text> interval_as_string("string", TimeIntervalAsString,
                                             DependsOnlyOnParameters);
RelationEqual<time_interval, time_interval> equal(DependsOnlyOnParameters);
Operator2<time_interval, time_interval, boolean> less(kOperatorLess, Less, DependsOnlyOnParameters);
Operator2<time_interval, time_interval, time_interval> add(kOperatorAdd, Add,
                                                           DependsOnlyOnParameters);
Operator2<time_interval, time_interval, time_interval> subtract(kOperatorSubtract, Subtract,
                                                                DependsOnlyOnParameters);
Operator2<time_interval, integer, time_interval> multiply(kOperatorMultiply, Multiply,
                                                          DependsOnlyOnParameters);
Operator2<integer, time_interval, time_interval> multiply_from(kOperatorMultiply, Multiply,
                                                               DependsOnlyOnParameters);
Operator2<time_interval, integer, time_interval> divide(kOperatorDivide, Divide,
                                                        DependsOnlyOnParameters);
Operator2<time_interval, time_interval, integer> ratio(kOperatorDivide, Divide,
                                                       DependsOnlyOnParameters);
Operator2<time_interval, time_interval, time_interval> modulo(kOperatorModulo, Modulo,
                                                              DependsOnlyOnParameters);

}  // namespace
