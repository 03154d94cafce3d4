// What a string falls into: characters, bytes, lines, words, and pieces between separators.
#include <algorithm>
#include <optional>
#include <string_view>

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "portable_inspectors/character.h"
#include "portable_inspectors/iterated_by_parameter.h"
#include "portable_inspectors/text.h"
#include "portable_inspectors/text_pieces.h"

std::optional<std::string_view> TakeLine(std::string_view& rest) {
  if (rest.empty()) return std::nullopt;
  std::size_t const size = std::min(rest.find_first_of("\r\n"), rest.size());
  std::string_view const line = rest.substr(0, size);
  rest.remove_prefix(size);
  if (rest.starts_with("\r\n")) {
    rest.remove_prefix(2);
  } else if (!rest.empty()) {
    rest.remove_prefix(1);
  }
  return line;
}

std::optional<std::string_view> TakeWord(std::string_view& rest) {
  constexpr std::string_view kWhiteSpace = " \t\r\n";
  rest.remove_prefix(std::min(rest.find_first_not_of(kWhiteSpace), rest.size()));
  if (rest.empty()) return std::nullopt;
  std::string_view const word = rest.substr(0, rest.find_first_of(kWhiteSpace));
  rest.remove_prefix(word.size());
  return word;
}

namespace {

using Take = std::optional<std::string_view> (*)(std::string_view&);

std::optional<std::string_view> TakeCharacter(std::string_view& rest) {
  if (rest.empty()) return std::nullopt;
  std::string_view const character = rest.substr(0, FirstCharacterSize(rest));
  rest.remove_prefix(character.size());
  return character;
}

// Iterates over what `take` takes off a string.
template <Take take>
class PieceIterator {
 public:
  inspector_string First(inspector_string const& string) {
    rest_ = View(string);
    return Next(string);
  }
  inspector_string Next(inspector_string const&) {
    std::optional<std::string_view> const piece = take(rest_);
    if (!piece) throw NoSuchObject();
    return Slice(*piece);
  }

 private:
  std::string_view rest_;
};

// Pieces are numbered from 1.
template <Take take>
inspector_string NumberedPiece(unsigned long long number, inspector_string const& string) {
  std::string_view rest = View(string);
  std::optional<std::string_view> piece;
  for (unsigned long long taken = 0; taken < number; ++taken) {
    piece = take(rest);
    if (!piece) break;
  }
  if (!piece) throw NoSuchObject();
  return Slice(*piece);
}

template <Take take>
inspector_string FirstPiece(inspector_string const& string) {
  return NumberedPiece<take>(1, string);
}

template <Take take>
inspector_string LastPiece(inspector_string const& string) {
  std::string_view rest = View(string);
  std::optional<std::string_view> last;
  while (std::optional<std::string_view> const piece = take(rest)) last = piece;
  if (!last) throw NoSuchObject();
  return Slice(*last);
}

class ByteIterator {
 public:
  integer First(inspector_string const& string) {
    index_ = 0;
    return Next(string);
  }
  integer Next(inspector_string const& string) {
    if (index_ == string.length) throw NoSuchObject();
    return string.start[index_++];
  }

 private:
  std::size_t index_ = 0;
};

// Every piece between occurrences of the separator, empty ones too. An empty separator separates
// nothing.
class SeparatedIterator {
 public:
  inspector_string First(inspector_string const& separator, inspector_string const& string) {
    rest_ = View(string);
    ended_ = false;
    return Next(separator, string);
  }
  inspector_string Next(inspector_string const& separator, inspector_string const&) {
    if (ended_) throw NoSuchObject();
    std::size_t const size =
        separator.length == 0 ? std::string_view::npos : rest_.find(View(separator));
    ended_ = size == std::string_view::npos;
    std::string_view const piece = rest_.substr(0, size);
    if (!ended_) rest_.remove_prefix(size + separator.length);
    return Slice(piece);
  }

 protected:
  bool Ended() const { return ended_; }

 private:
  std::string_view rest_;
  bool ended_ = true;
};

// Only the pieces with an occurrence of the mark on both sides.
class BetweenIterator : public SeparatedIterator {
 public:
  inspector_string First(inspector_string const& mark, inspector_string const& string) {
    SeparatedIterator::First(mark, string);
    return Next(mark, string);
  }
  inspector_string Next(inspector_string const& mark, inspector_string const& string) {
    inspector_string const piece = SeparatedIterator::Next(mark, string);
    if (Ended()) throw NoSuchObject();
    return piece;
  }
};

// Positions of occurrences that do not overlap, in characters from 0.
class PositionIterator {
 public:
  integer First(inspector_string const& pattern, inspector_string const& string) {
    offset_ = 0;
    counted_ = 0;
    characters_ = 0;
    return Next(pattern, string);
  }
  integer Next(inspector_string const& pattern, inspector_string const& string) {
    std::string_view const text = View(string);
    std::size_t const found =
        pattern.length == 0 ? std::string_view::npos : text.find(View(pattern), offset_);
    if (found == std::string_view::npos) throw NoSuchObject();
    characters_ += CountCharacters(text.substr(counted_, found - counted_));
    counted_ = found;
    offset_ = found + pattern.length;
    return static_cast<integer>(characters_);
  }

 private:
  std::size_t offset_ = 0;      // where the search goes on
  std::size_t counted_ = 0;     // up to where characters are counted
  std::size_t characters_ = 0;  // before `counted_`
};

using Text = inspector_string;

IteratedProperty<PieceIterator<TakeCharacter>, Text, Text> characters("character", "characters",
                                                                      DependsOnlyOnParameters);
IteratedProperty<ByteIterator, Text, integer> bytes("byte", "bytes", DependsOnlyOnParameters);
IteratedProperty<PieceIterator<TakeLine>, Text, Text> lines("line", "lines",
                                                            DependsOnlyOnParameters);
IteratedProperty<PieceIterator<TakeWord>, Text, Text> words("word", "words",
                                                            DependsOnlyOnParameters);
NumberedProperty<Text, Text> line("line", "lines", NumberedPiece<TakeLine>,
                                  DependsOnlyOnParameters);
NumberedProperty<Text, Text> word("word", "words", NumberedPiece<TakeWord>,
                                  DependsOnlyOnParameters);
Property<Text, Text> first_line("first line", "first lines", FirstPiece<TakeLine>,
                                DependsOnlyOnParameters);
Property<Text, Text> last_line("last line", "last lines", LastPiece<TakeLine>,
                               DependsOnlyOnParameters);
Property<Text, Text> first_word("first word", "first words", FirstPiece<TakeWord>,
                                DependsOnlyOnParameters);
Property<Text, Text> last_word("last word", "last words", LastPiece<TakeWord>,
                               DependsOnlyOnParameters);
IteratedPropertyByParameter<SeparatedIterator, Text, Text, Text> separated(
    "substring separated by", "substrings separated by", DependsOnlyOnParameters);
IteratedPropertyByParameter<BetweenIterator, Text, Text, Text> between("substring between",
                                                                       "substrings between",
                                                                       DependsOnlyOnParameters);
IteratedPropertyByParameter<PositionIterator, Text, Text, integer> positions(
    "position", "positions", DependsOnlyOnParameters);

}  // namespace
