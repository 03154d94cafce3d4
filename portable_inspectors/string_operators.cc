// Joining and comparing strings, byte by byte, and what a string can be read as.
#include <string_view>

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "portable_inspectors/numeral.h"
#include "portable_inspectors/text.h"

namespace {

using Text = inspector_string;

Text Join(Text const& left, Text const& right) {
  unsigned char* const joined = AllocateText(left.length + right.length);
  View(left).copy(reinterpret_cast<char*>(joined), left.length);
  View(right).copy(reinterpret_cast<char*>(joined + left.length), right.length);
  return {joined, left.length + right.length};
}

boolean Equal(Text const& left, Text const& right) { return View(left) == View(right); }
boolean Less(Text const& left, Text const& right) { return View(left) < View(right); }
boolean Contains(Text const& text, Text const& part) {
  return View(text).find(View(part)) != std::string_view::npos;
}
boolean StartsWith(Text const& text, Text const& start) {
  return View(text).starts_with(View(start));
}
boolean EndsWith(Text const& text, Text const& end) { return View(text).ends_with(View(end)); }

Text StringAsString(Text const& string) { return string; }

integer StringAsInteger(Text const& string) {
  std::optional<std::int64_t> const number = ReadDecimal(View(string));
  if (!number) throw NoSuchObject();
  return *number;
}

integer StringAsHexadecimal(Text const& string) {
  std::optional<std::int64_t> const number = ReadHexadecimal(View(string));
  if (!number) throw NoSuchObject();
  return *number;
}

boolean StringAsBoolean(Text const& string) {
  if (View(string) == "true") return true;
  if (View(string) == "false") return false;
  throw NoSuchObject();
}

Operator2<Text, Text, Text> join(kOperatorJoin, Join, DependsOnlyOnParameters);
RelationEqual<Text, Text> equal(DependsOnlyOnParameters, Equal);
Operator2<Text, Text, boolean> less(kOperatorLess, Less, DependsOnlyOnParameters);
Operator2<Text, Text, boolean> contains(kOperatorContains, Contains, DependsOnlyOnParameters);
Operator2<Text, Text, boolean> starts_with(kOperatorStartsWith, StartsWith,
                                           DependsOnlyOnParameters);
Operator2<Text, Text, boolean> ends_with(kOperatorEndsWith, EndsWith, DependsOnlyOnParameters);
Cast<Text, Text> as_string("string", StringAsString, DependsOnlyOnParameters);
Cast<Text, integer> as_integer("integer", StringAsInteger, DependsOnlyOnParameters);
Cast<Text, integer> as_hexadecimal("hexadecimal", StringAsHexadecimal, DependsOnlyOnParameters);
Cast<Text, boolean> as_boolean("boolean", StringAsBoolean, DependsOnlyOnParameters);

}  // namespace
