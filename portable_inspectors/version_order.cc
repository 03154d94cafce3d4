#include "portable_inspectors/version_order.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

struct StageWord {
  std::string_view word;
  VersionStage stage;
};

constexpr StageWord kStageWords[] = {
    {"dev", VersionStage::kDevelopment},
    {"development", VersionStage::kDevelopment},
    {"nightly", VersionStage::kDevelopment},
    {"snapshot", VersionStage::kDevelopment},
    {"alpha", VersionStage::kAlpha},
    {"beta", VersionStage::kBeta},
    {"pre", VersionStage::kBeta},
    {"preview", VersionStage::kBeta},
    {"rc", VersionStage::kReleaseCandidate},
    {"fc", VersionStage::kReleaseCandidate},
};

std::weak_ordering CompareIgnoringCase(std::string_view left, std::string_view right) {
  return std::lexicographical_compare_three_way(
      left.begin(), left.end(), right.begin(), right.end(),
      [](char a, char b) { return std::weak_ordering(Lower(a) <=> Lower(b)); });
}

// In the order of comparison. The end of a group stands for the zeros that may follow.
enum class Kind { kStage, kZero, kGroupEnd, kWord, kNumber };

struct Component {
  Kind kind = Kind::kGroupEnd;
  std::string_view text;  // of a number without leading zeros
  VersionStage stage = VersionStage::kRelease;
};

std::weak_ordering Compare(Component const& left, Component const& right) {
  auto const rank = [](Kind kind) { return kind == Kind::kGroupEnd ? Kind::kZero : kind; };
  if (rank(left.kind) != rank(right.kind)) return rank(left.kind) <=> rank(right.kind);
  switch (left.kind) {
    case Kind::kStage:
      return left.stage <=> right.stage;
    case Kind::kWord:
      return CompareIgnoringCase(left.text, right.text);
    case Kind::kNumber:  // of any size
      if (left.text.size() != right.text.size()) return left.text.size() <=> right.text.size();
      return left.text <=> right.text;
    default:
      return std::weak_ordering::equivalent;
  }
}

std::string_view WithoutLeadingZeros(std::string_view digits) {
  return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

// The components of a text, group by group. Zeros in front of a stage and at the end of a group
// say nothing ("1.0.0b1" is "1b1"), so they are held back until something else follows.
class Components {
 public:
  explicit Components(std::string_view text) : text_(text) { Advance(); }

  Component Current() const {
    return held_zeros_ > 0 ? Component{Kind::kZero, {}, VersionStage::kRelease} : current_;
  }
  bool AtEnd() const { return Current().kind == Kind::kGroupEnd && position_ == text_.size(); }

  // Goes past the current component; stays at the end of a group.
  void Advance() {
    if (held_zeros_ > 0) {
      --held_zeros_;
      return;
    }
    do {
      current_ = Read();
      if (current_.kind == Kind::kZero) ++held_zeros_;
    } while (current_.kind == Kind::kZero);
    if (current_.kind == Kind::kStage || current_.kind == Kind::kGroupEnd) held_zeros_ = 0;
  }

  void NextGroup() {
    if (position_ < text_.size()) ++position_;  // the "-"
    Advance();
  }

 private:
  Component Read() {
    while (position_ < text_.size()) {
      char const c = text_[position_];
      if (IsDigit(c)) return ReadNumber();
      if (IsLetter(c)) return ReadWord();
      if (c == '-' && !StageFollows()) return Component();
      ++position_;
      if (c == '~' && !StageFollows()) return {Kind::kStage, {}, VersionStage::kBeforeAll};
    }
    return Component();
  }

  Component ReadNumber() {
    std::size_t const begin = position_;
    while (position_ < text_.size() && IsDigit(text_[position_])) ++position_;
    std::string_view const digits = WithoutLeadingZeros(text_.substr(begin, position_ - begin));
    return {digits.empty() ? Kind::kZero : Kind::kNumber, digits, VersionStage::kRelease};
  }

  Component ReadWord() {
    std::string_view const word = WordAt(position_);
    VersionStage const stage = StageAt(position_);
    position_ += word.size();
    return {stage == VersionStage::kRelease ? Kind::kWord : Kind::kStage, word, stage};
  }

  std::string_view WordAt(std::size_t position) const {
    std::size_t end = position;
    while (end < text_.size() && IsLetter(text_[end])) ++end;
    return text_.substr(position, end - position);
  }

  // The stage that the word there names; `kRelease` when it names none.
  VersionStage StageAt(std::size_t position) const {
    std::string_view const word = WordAt(position);
    if (word.size() == 1) return LetterStage(position);
    for (StageWord const& known : kStageWords) {
      if (CompareIgnoringCase(word, known.word) == 0) return known.stage;
    }
    return VersionStage::kRelease;
  }

  // "1.0b2", but neither "1.1.1b" nor "20B28".
  VersionStage LetterStage(std::size_t position) const {
    bool const within_numbers = position > 0 && IsDigit(text_[position - 1]) &&
                                position + 1 < text_.size() && IsDigit(text_[position + 1]);
    if (!within_numbers) return VersionStage::kRelease;
    switch (text_[position]) {
      case 'd':
        return VersionStage::kDevelopment;
      case 'a':
        return VersionStage::kAlpha;
      case 'b':
        return VersionStage::kBeta;
      default:
        return VersionStage::kRelease;
    }
  }

  // Whether the next word, right behind the mark at or before the current position, is a stage.
  bool StageFollows() const {
    std::size_t const next = std::min(text_.find_first_not_of("-~._+", position_), text_.size());
    return next < text_.size() && IsLetter(text_[next]) && StageAt(next) != VersionStage::kRelease;
  }

  std::string_view text_;
  std::size_t position_ = 0;
  unsigned held_zeros_ = 0;  // to be given before `current_`
  Component current_;
};

struct EpochAndRest {
  std::string_view epoch;  // without leading zeros
  std::string_view rest;
};

EpochAndRest SplitEpoch(std::string_view text) {
  std::size_t const digits = std::min(text.find_first_not_of("0123456789"), text.size());
  if (digits > 0 && digits < text.size() && text[digits] == ':') {
    return {WithoutLeadingZeros(text.substr(0, digits)), text.substr(digits + 1)};
  }
  if (!text.empty() && Lower(text[0]) == 'v') text.remove_prefix(1);
  return {{}, text};
}

std::int64_t ToNumber(std::string_view digits) {
  std::int64_t number = 0;
  auto const read = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return read.ec == std::errc() || digits.empty() ? number
                                                  : std::numeric_limits<std::int64_t>::max();
}

}  // namespace

bool IsVersionText(std::string_view text) {
  std::string_view const rest = SplitEpoch(text).rest;
  return !rest.empty() && IsDigit(rest[0]) && std::all_of(rest.begin(), rest.end(), [](char c) {
    return IsDigit(c) || IsLetter(c) || std::string_view(".-_+~").find(c) != std::string_view::npos;
  });
}

std::weak_ordering CompareVersionTexts(std::string_view left_text, std::string_view right_text) {
  auto const [left_epoch, left_rest] = SplitEpoch(left_text);
  auto const [right_epoch, right_rest] = SplitEpoch(right_text);
  if (left_epoch.size() != right_epoch.size()) return left_epoch.size() <=> right_epoch.size();
  if (left_epoch != right_epoch) return left_epoch <=> right_epoch;

  Components left(left_rest);
  Components right(right_rest);
  for (;;) {
    Component const a = left.Current();
    Component const b = right.Current();
    if (std::weak_ordering const order = Compare(a, b); order != 0) return order;
    if (a.kind == Kind::kGroupEnd && b.kind == Kind::kGroupEnd) {
      if (left.AtEnd() && right.AtEnd()) return std::weak_ordering::equivalent;
      left.NextGroup();
      right.NextGroup();
      continue;
    }
    if (a.kind != Kind::kGroupEnd) left.Advance();
    if (b.kind != Kind::kGroupEnd) right.Advance();
  }
}

VersionParts PartsOfVersionText(std::string_view text) {
  VersionParts parts;
  Components components(SplitEpoch(text).rest);
  std::size_t count = 0;
  for (; components.Current().kind != Kind::kGroupEnd; components.Advance()) {
    Component const component = components.Current();
    if (component.kind == Kind::kStage) {
      parts.stage = component.stage;
      components.Advance();
      if (components.Current().kind == Kind::kNumber) {
        parts.non_release_revision = ToNumber(components.Current().text);
      }
      break;
    }
    if (component.kind == Kind::kWord || count == std::size(parts.numbers)) {
      count = std::size(parts.numbers);  // a stage may still follow
      continue;
    }
    parts.numbers[count++] = ToNumber(component.text);
  }
  return parts;
}
