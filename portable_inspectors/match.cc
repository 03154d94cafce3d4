// Regular expressions: `match "re" of S` is the first match, `matches "re" of S` all of them. A
// match knows its text, its position and its groups.
#include <string_view>

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "portable_inspectors/character.h"
#include "portable_inspectors/iterated_by_parameter.h"
#include "portable_inspectors/regex_engine.h"
#include "portable_inspectors/text.h"

namespace {

using Text = inspector_string;

// A match of a pattern in a text, both of which outlive it.
struct regex_match {
  std::string_view pattern;
  std::string_view text;
  RegexSpan const* spans;  // the whole match, then the groups; in evaluator memory
  std::size_t count;
};

}  // namespace

template <>
struct InspectorTypeName<regex_match> {
  static constexpr char const* kName = "match";
};

namespace {

regex_match FindMatch(std::string_view pattern, std::string_view text, std::size_t from) {
  RegexEngine& engine = TheRegexEngine();
  std::size_t const count = engine.CountGroups(pattern) + 1;
  auto* const spans = static_cast<RegexSpan*>(Allocate_Inspector_Memory(count * sizeof(RegexSpan)));
  // An empty text of no address would make a match of it look like a group that took no part.
  if (text.data() == nullptr) text = "";
  if (!engine.Match(pattern, text, from, spans, count)) throw NoSuchObject();
  return {pattern, text, spans, count};
}

std::size_t OffsetOf(regex_match const& match) {
  return static_cast<std::size_t>(match.spans[0].start - match.text.data());
}

regex_match match_of_string(unsigned char const* start, unsigned long length, Text const& string) {
  return FindMatch(View(start, length), View(string), 0);
}

// Matches that do not overlap; behind an empty one the search goes on one character later.
class MatchIterator {
 public:
  regex_match First(Text const& pattern, Text const& string) {
    from_ = 0;
    return Next(pattern, string);
  }
  regex_match Next(Text const& pattern, Text const& string) {
    if (from_ > string.length) throw NoSuchObject();
    regex_match const match = FindMatch(View(pattern), View(string), from_);
    std::size_t const length = match.spans[0].length;
    from_ = OffsetOf(match) + length;
    if (length == 0) {
      std::size_t const skipped = FirstCharacterSize(match.text.substr(from_));
      from_ += skipped == 0 ? 1 : skipped;
    }
    return match;
  }

 private:
  std::size_t from_ = 0;
};

Text TextOf(RegexSpan const& span) { return Slice({span.start, span.length}); }

Text text_of_match(regex_match const& match) { return TextOf(match.spans[0]); }

integer position_of_match(regex_match const& match) {
  return static_cast<integer>(CountCharacters(match.text.substr(0, OffsetOf(match))));
}

integer length_of_match(regex_match const& match) {
  return static_cast<integer>(CountCharacters(View(text_of_match(match))));
}

// Group 0 is the whole match. A group that took no part is no such object.
Text group_of_match(unsigned long long number, regex_match const& match) {
  if (number >= match.count || match.spans[number].start == nullptr) throw NoSuchObject();
  return TextOf(match.spans[number]);
}

Text named_group_of_match(unsigned char const* start, unsigned long length,
                          regex_match const& match) {
  std::size_t const number = TheRegexEngine().GroupNamed(match.pattern, View(start, length));
  if (number == 0) throw NoSuchObject();
  return group_of_match(number, match);
}

// The groups that took part, from the first.
class GroupIterator {
 public:
  Text First(regex_match const& match) {
    next_ = 1;
    return Next(match);
  }
  Text Next(regex_match const& match) {
    while (next_ < match.count && match.spans[next_].start == nullptr) ++next_;
    return group_of_match(next_++, match);
  }

 private:
  std::size_t next_ = 1;
};

Type<regex_match> type;
NamedProperty<Text, regex_match> match("match", "matches", match_of_string,
                                       DependsOnlyOnParameters);
IteratedPropertyByParameter<MatchIterator, Text, Text, regex_match> matches(
    "match", "matches", DependsOnlyOnParameters);
Property<regex_match, Text> text("text", "texts", text_of_match, DependsOnlyOnParameters);
Property<regex_match, integer> position("position", "positions", position_of_match,
                                        DependsOnlyOnParameters);
Property<regex_match, integer> length("length", "lengths", length_of_match,
                                      DependsOnlyOnParameters);
NumberedProperty<regex_match, Text> group("group", "groups", group_of_match,
                                          DependsOnlyOnParameters);
NamedProperty<regex_match, Text> named_group("group", "groups", named_group_of_match,
                                             DependsOnlyOnParameters);
IteratedProperty<GroupIterator, regex_match, Text> groups("group", "groups",
                                                          DependsOnlyOnParameters);
Cast<regex_match, Text> as_string("string", text_of_match, DependsOnlyOnParameters);

}  // namespace
