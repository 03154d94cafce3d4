// A string's length, its parts by number and by what stands around them, and its case. Counts and
// positions are in characters, from 0; lines and words are numbered from 1, as people do.
#include <algorithm>
#include <string_view>

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "portable_inspectors/character.h"
#include "portable_inspectors/text.h"

namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";

integer length_of_string(inspector_string const& string) {
  return static_cast<integer>(CountCharacters(View(string)));
}

inspector_string character_of_string(unsigned long long index, inspector_string const& string) {
  std::string_view rest = View(string);
  rest.remove_prefix(PrefixSize(rest, index));
  if (rest.empty()) throw NoSuchObject();
  return Slice(rest.substr(0, FirstCharacterSize(rest)));
}

inspector_string prefix_of_string(unsigned long long count, inspector_string const& string) {
  std::string_view const text = View(string);
  return Slice(text.substr(0, PrefixSize(text, count)));
}

inspector_string suffix_of_string(unsigned long long count, inspector_string const& string) {
  std::string_view const text = View(string);
  return Slice(text.substr(text.size() - SuffixSize(text, count)));
}

inspector_string substring_from(unsigned long long position, inspector_string const& string) {
  std::string_view const text = View(string);
  return Slice(text.substr(PrefixSize(text, position)));
}

// Where `pattern` stands, from either end; an empty one stands nowhere.
std::size_t FirstPosition(std::string_view text, std::string_view pattern) {
  std::size_t const position = pattern.empty() ? std::string_view::npos : text.find(pattern);
  if (position == std::string_view::npos) throw NoSuchObject();
  return position;
}

std::size_t LastPosition(std::string_view text, std::string_view pattern) {
  std::size_t const position = pattern.empty() ? std::string_view::npos : text.rfind(pattern);
  if (position == std::string_view::npos) throw NoSuchObject();
  return position;
}

inspector_string substring_before(unsigned char const* start, unsigned long length,
                                  inspector_string const& string) {
  std::string_view const text = View(string);
  return Slice(text.substr(0, FirstPosition(text, View(start, length))));
}

inspector_string substring_after(unsigned char const* start, unsigned long length,
                                 inspector_string const& string) {
  std::string_view const text = View(string);
  return Slice(text.substr(FirstPosition(text, View(start, length)) + length));
}

inspector_string substring_before_last(unsigned char const* start, unsigned long length,
                                       inspector_string const& string) {
  std::string_view const text = View(string);
  return Slice(text.substr(0, LastPosition(text, View(start, length))));
}

inspector_string substring_after_last(unsigned char const* start, unsigned long length,
                                      inspector_string const& string) {
  std::string_view const text = View(string);
  return Slice(text.substr(LastPosition(text, View(start, length)) + length));
}

integer position_in_string(unsigned char const* start, unsigned long length,
                           inspector_string const& string) {
  std::string_view const text = View(string);
  std::size_t const position = FirstPosition(text, View(start, length));
  return static_cast<integer>(CountCharacters(text.substr(0, position)));
}

inspector_string trimmed_text_of_string(inspector_string const& string) {
  std::string_view const text = View(string);
  std::size_t const begin = text.find_first_not_of(kWhiteSpace);
  if (begin == std::string_view::npos) return Slice(text.substr(0, 0));
  return Slice(text.substr(begin, text.find_last_not_of(kWhiteSpace) + 1 - begin));
}

// ASCII letters only: the encoding of the other bytes is not known here.
template <char from, char offset>
inspector_string ShiftCase(inspector_string const& string) {
  unsigned char* const copy = AllocateText(string.length);
  std::transform(string.start, string.start + string.length, copy, [](unsigned char byte) {
    bool const shifts = byte >= from && byte <= from + ('z' - 'a');
    return static_cast<unsigned char>(shifts ? byte + offset : byte);
  });
  return {copy, string.length};
}

inspector_string uppercase_of_string(inspector_string const& string) {
  return ShiftCase<'a', 'A' - 'a'>(string);
}
inspector_string lowercase_of_string(inspector_string const& string) {
  return ShiftCase<'A', 'a' - 'A'>(string);
}

Property<inspector_string, integer> length("length", "lengths", length_of_string,
                                           DependsOnlyOnParameters);
NumberedProperty<inspector_string, inspector_string> character("character", "characters",
                                                               character_of_string,
                                                               DependsOnlyOnParameters);
NumberedProperty<inspector_string, inspector_string> prefix("prefix", "prefixes", prefix_of_string,
                                                            DependsOnlyOnParameters);
NumberedProperty<inspector_string, inspector_string> suffix("suffix", "suffixes", suffix_of_string,
                                                            DependsOnlyOnParameters);
NumberedProperty<inspector_string, inspector_string> from("substring from", "substrings from",
                                                          substring_from, DependsOnlyOnParameters);
NamedProperty<inspector_string, inspector_string> before("substring before", "substrings before",
                                                         substring_before, DependsOnlyOnParameters);
NamedProperty<inspector_string, inspector_string> after("substring after", "substrings after",
                                                        substring_after, DependsOnlyOnParameters);
NamedProperty<inspector_string, inspector_string> before_last("substring before last",
                                                              "substrings before last",
                                                              substring_before_last,
                                                              DependsOnlyOnParameters);
NamedProperty<inspector_string, inspector_string> after_last("substring after last",
                                                             "substrings after last",
                                                             substring_after_last,
                                                             DependsOnlyOnParameters);
NamedProperty<inspector_string, integer> position("position", "positions", position_in_string,
                                                  DependsOnlyOnParameters);
Property<inspector_string, inspector_string> trimmed_text("trimmed text", "trimmed texts",
                                                          trimmed_text_of_string,
                                                          DependsOnlyOnParameters);
Property<inspector_string, inspector_string> trim("trim", "trims", trimmed_text_of_string,
                                                  DependsOnlyOnParameters);
Property<inspector_string, inspector_string> uppercase("uppercase", "uppercases",
                                                       uppercase_of_string,
                                                       DependsOnlyOnParameters);
Property<inspector_string, inspector_string> lowercase("lowercase", "lowercases",
                                                       lowercase_of_string,
                                                       DependsOnlyOnParameters);

}  // namespace
