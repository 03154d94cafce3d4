#include "machine/capture/pseudonyms.h"

#include <algorithm>
#include <random>

namespace machine::capture {
namespace {

constexpr std::string_view kDigits = "0123456789", kSmall = "abcdefghijklmnopqrstuvwxyz",
                           kBig = "ABCDEFGHIJKLMNOPQRSTUVWXYZ", kHexadecimal = "0123456789abcdef";

bool IsIn(std::string_view set, char character) {
  return set.find(character) != std::string_view::npos;
}

char Small(char character) {
  return IsIn(kBig, character) ? static_cast<char>(character - 'A' + 'a') : character;
}

// Letters of other alphabets are bytes above ASCII.
bool IsOfWord(char character) {
  return static_cast<unsigned char>(character) >= 0x80 || IsIn(kDigits, character) ||
         IsIn(kSmall, Small(character));
}

std::string Lowered(std::string_view text) {
  std::string lowered(text);
  std::ranges::transform(lowered, lowered.begin(), Small);
  return lowered;
}

std::size_t WordSize(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::find_if_not(text, IsOfWord) - text.begin());
}

// Groups of hexadecimal digits with separators between them, and no word behind.
std::size_t GroupsAt(std::string_view text, std::vector<std::size_t> const& sizes,
                     std::string_view separators) {
  std::size_t at = 0;
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    if (i > 0 && (at >= text.size() || !IsIn(separators, text[at++]))) return 0;
    if (WordSize(text.substr(at)) != sizes[i]) return 0;
    for (std::size_t const end = at + sizes[i]; at < end; ++at) {
      if (!IsIn(kHexadecimal, Small(text[at]))) return 0;
    }
  }
  return at;
}

// What looks like one in hexadecimal stays one.
bool IsNumber(std::string_view word) {
  constexpr std::size_t kLeast = 8;
  return word.size() >= kLeast &&
         std::ranges::all_of(word, [](char each) { return IsIn(kHexadecimal, Small(each)); });
}

// That of no device, and that of all of them.
bool IsNobodys(std::string_view identifier) {
  char const first = Small(identifier.front());
  bool const is_one = std::ranges::all_of(
      identifier, [first](char each) { return !IsOfWord(each) || Small(each) == first; });
  return is_one && (first == '0' || first == 'f');
}

std::size_t IdentifierAt(std::string_view text) {
  std::size_t size = GroupsAt(text, {8, 4, 4, 4, 12}, "-");
  if (size == 0) size = GroupsAt(text, {2, 2, 2, 2, 2, 2}, ":-");
  bool const goes_on = size < text.size() && IsIn(":-", text[size]) && size + 1 < text.size() &&
                       IsOfWord(text[size + 1]);
  return size == 0 || goes_on || IsNobodys(text.substr(0, size)) ? 0 : size;
}

}  // namespace

void Pseudonyms::AddName(std::string_view name) {
  while (!name.empty() && !IsOfWord(name.front())) name.remove_prefix(1);
  while (!name.empty() && !IsOfWord(name.back())) name.remove_suffix(1);
  std::string lowered = Lowered(name);
  bool const has_letter = std::ranges::any_of(
      lowered, [](char each) { return IsOfWord(each) && !IsIn(kDigits, each); });
  if (!has_letter || !names_.insert(lowered).second) return;
  auto& names = names_by_word_[lowered.substr(0, WordSize(lowered))];
  names.push_back(std::move(lowered));
  std::ranges::sort(names, [](auto& one, auto& other) { return one.size() > other.size(); });
}

void Pseudonyms::Avoid(std::string_view text) {
  while (!text.empty()) {
    std::size_t const size = WordSize(text);
    if (size != 0) used_.insert(Lowered(text.substr(0, size)));
    text.remove_prefix(std::max<std::size_t>(size, 1));
  }
}

std::size_t Pseudonyms::NameAt(std::string_view text, std::size_t at, std::size_t word_size) const {
  auto const found = names_by_word_.find(Lowered(text.substr(at, word_size)));
  if (found == names_by_word_.end()) return 0;
  for (std::string const& name : found->second) {
    std::size_t const end = at + name.size();
    bool const is_end = end == text.size() || (end < text.size() && !IsOfWord(text[end]));
    if (is_end && Lowered(text.substr(at, name.size())) == name) return name.size();
  }
  return 0;
}

std::string Pseudonyms::Draw(std::string_view text, Alphabet alphabet) {
  std::random_device random;
  std::string drawn(text);
  for (char& each : drawn) {
    std::size_t const number = random();
    if (alphabet == Alphabet::kBytes) {
      each = static_cast<char>(number);
    } else if (IsOfWord(each)) {
      std::string_view const set = alphabet == Alphabet::kHexadecimal ? kHexadecimal
                                   : IsIn(kDigits, each)              ? kDigits
                                                                      : kSmall;
      each = set[number % set.size()];
    }
  }
  return drawn;
}

// No name may stand for another one. Of one letter there may not be enough.
std::string Pseudonyms::StandIn(std::string_view text, Alphabet alphabet) {
  constexpr int kMostDraws = 1000;
  auto const known = stand_ins_.find(text);
  if (known != stand_ins_.end()) return known->second;
  std::string drawn = Draw(text, alphabet);
  for (int i = 0; i < kMostDraws && (names_.contains(drawn) || used_.contains(drawn)); ++i) {
    drawn = Draw(text, alphabet);
  }
  used_.insert(drawn);
  stand_ins_.emplace(text, drawn);
  return drawn;
}

void Pseudonyms::Replace(std::string_view text, Alphabet alphabet, char* replaced) {
  std::string const stand_in = StandIn(Lowered(text), alphabet);
  bool const is_all_big =
      alphabet == Alphabet::kHexadecimal && text.find_first_of(kBig) != std::string_view::npos;
  for (std::size_t i = 0; i < text.size(); ++i) {
    bool const is_big = (is_all_big || IsIn(kBig, text[i])) && IsIn(kSmall, stand_in[i]);
    replaced[i] = is_big ? static_cast<char>(stand_in[i] - 'a' + 'A') : stand_in[i];
  }
}

// Word by word, since "web3.example.org" and "web3" are one machine.
void Pseudonyms::ReplaceWords(std::string_view name, char* replaced) {
  for (std::size_t at = 0; at < name.size();) {
    std::size_t const size = WordSize(name.substr(at));
    std::string_view const word = name.substr(at, size);
    if (size != 0)
      Replace(word, IsNumber(word) ? Alphabet::kHexadecimal : Alphabet::kNames, replaced + at);
    at += std::max<std::size_t>(size, 1);
  }
}

std::string Pseudonyms::Replaced(std::string_view text) {
  if (bytes_.contains(std::string(text))) return StandIn(text, Alphabet::kBytes);
  std::string replaced(text);
  for (std::size_t at = 0; at < text.size();) {
    std::size_t const word = WordSize(text.substr(at));
    std::size_t const identifier = word == 0 ? 0 : IdentifierAt(text.substr(at));
    std::size_t const name = word == 0 || identifier != 0 ? 0 : NameAt(text, at, word);
    if (identifier != 0) {
      Replace(text.substr(at, identifier), Alphabet::kHexadecimal, &replaced[at]);
    } else if (name != 0) {
      ReplaceWords(text.substr(at, name), &replaced[at]);
    }
    at += std::max({word, identifier, name, std::size_t{1}});
  }
  return replaced;
}

}  // namespace machine::capture
