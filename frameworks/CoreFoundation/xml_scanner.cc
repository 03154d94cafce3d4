#include "frameworks/CoreFoundation/xml_scanner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include "frameworks/CoreFoundation/encodings/convert.h"
#include "frameworks/CoreFoundation/string_object.h"

namespace {

// Whether a byte ends a run of text that can be taken as it is.
constexpr std::array<bool, 256> kEndsPlainText = [] {
  std::array<bool, 256> table = {};
  table['<'] = table['&'] = true;
  for (std::size_t i = 0x80; i < table.size(); ++i) table[i] = true;
  return table;
}();

constexpr std::string_view kSection = "<![CDATA[";

}  // namespace

bool XmlScanner::Fail(char const* message) {
  if (failure_ == nullptr) {
    failure_ = message;
    failure_offset_ = static_cast<std::size_t>(at_ - begin_);
  }
  return false;
}

bool XmlScanner::SkipPast(std::string_view mark, char const* failure) {
  std::size_t const found = Rest().find(mark);
  if (found == std::string_view::npos) return Fail(failure);
  at_ += found + mark.size();
  return true;
}

bool XmlScanner::SkipDeclarations() {
  for (; IsAtDeclaration(); SkipSpace()) {
    if (StartsWith("<!--")) {
      at_ += 4;
      if (!SkipComment()) return false;
    } else if (StartsWith("<?")) {
      if (!SkipInstruction()) return false;
    } else {
      return true;
    }
  }
  return true;
}

bool XmlScanner::SkipProlog() {
  if (!SkipSpaceAndComments()) return false;
  if (!StartsWith("<!DOCTYPE")) return true;
  return SkipDocumentType() && SkipSpaceAndComments();
}

bool XmlScanner::SkipToEnd() {
  if (!SkipSpaceAndComments()) return false;
  return at_ == end_ || Fail("Text behind the end of the property list");
}

bool XmlScanner::SkipQuoted() {
  char const quote = *at_++;
  return SkipPast({&quote, 1}, "Unterminated quotation");
}

// Declarations of the internal subset nest in the outer one as tags do; quotes and comments may
// hold any of the marks.
bool XmlScanner::SkipDocumentType() {
  std::size_t open = 0;
  do {
    if (at_ == end_) return Fail("Unterminated document type");
    bool is_well = true;
    if (StartsWith("<!--")) {
      at_ += 4;
      is_well = SkipComment();
    } else if (StartsWith("<?")) {
      is_well = SkipInstruction();
    } else if (*at_ == '"' || *at_ == '\'') {
      is_well = SkipQuoted();
    } else {
      if (*at_ == '<') ++open;
      if (*at_ == '>') --open;
      ++at_;
    }
    if (!is_well) return false;
  } while (open > 0);
  return true;
}

bool XmlScanner::TakeTag(XmlTag& tag) {
  if (at_ == end_) return Fail("Unexpected end");
  if (*at_ != '<') return Fail("Text between elements");
  char const* at = at_ + 1;
  tag.is_closing = at != end_ && *at == '/';
  if (tag.is_closing) ++at;
  char const* const name = at;
  while (at != end_ && *at != '>' && *at != '/' && !IsSpace(*at)) ++at;
  tag.name = {name, static_cast<std::size_t>(at - name)};
  tag.is_empty = !tag.is_closing && end_ - at >= 2 && at[0] == '/' && at[1] == '>';
  if (tag.is_empty) ++at;
  if (at != end_ && *at == '>') {
    at_ = at + 1;
    return true;
  }
  for (at_ = at; at_ != end_ && *at_ != '>';) {
    tag.is_empty = *at_ == '/';
    if (*at_ == '"' || *at_ == '\'') {
      if (!SkipQuoted()) return false;
    } else {
      ++at_;
    }
  }
  if (at_ == end_) return Fail("Unterminated tag");
  ++at_;
  return !(tag.is_closing && tag.is_empty) || Fail("Malformed tag");
}

bool XmlScanner::TakeClosing(std::string_view name) {
  if (at_ == end_) return Fail("Unexpected end");
  char const* const start = at_ + 2;
  bool const is_there = static_cast<std::size_t>(end_ - at_) >= 2 + name.size() && at_[0] == '<' &&
                        at_[1] == '/' && std::equal(name.begin(), name.end(), start);
  if (!is_there) return Fail("Closing tag expected");
  at_ = start + name.size();
  SkipSpace();
  if (at_ == end_ || *at_ != '>') return Fail("Malformed closing tag");
  ++at_;
  return true;
}

std::string_view XmlScanner::TakeRaw() {
  auto const* const tag =
      static_cast<char const*>(std::memchr(at_, '<', static_cast<std::size_t>(end_ - at_)));
  char const* const start = at_;
  at_ = tag == nullptr ? end_ : tag;
  return {start, static_cast<std::size_t>(at_ - start)};
}

bool XmlScanner::TakePlainText(std::string_view& text) {
  char const* at = at_;
  while (at != end_ && !kEndsPlainText[static_cast<unsigned char>(*at)]) ++at;
  if (end_ - at < 2 || at[0] != '<' || at[1] != '/') return false;
  text = {at_, static_cast<std::size_t>(at - at_)};
  at_ = at;
  return true;
}

bool XmlScanner::TakeCharacterNumber(std::string_view digits, UInt32& character) const {
  int base = 10;
  if (digits.starts_with('x')) {
    digits.remove_prefix(1);
    base = 16;
  }
  char const* const end = digits.data() + digits.size();
  auto const [stop, error] = std::from_chars(digits.data(), end, character, base);
  return error == std::errc() && stop == end && character <= 0x10FFFF;
}

bool XmlScanner::TakeReference(UInt32& character) {
  struct Entity {
    std::string_view name;
    char character;
  };
  constexpr Entity kEntities[] = {
      {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
  // No number that counts is longer, and no search goes on to the end of a large file.
  constexpr std::size_t kLongest = 32;
  std::string_view name = Rest().substr(1, kLongest);
  name = name.substr(0, name.find(';'));
  bool is_known = false;
  if (name.size() < kLongest && name.size() + 1 < Rest().size()) {
    if (name.starts_with('#')) {
      is_known = TakeCharacterNumber(name.substr(1), character);
    } else {
      for (Entity const& entity : kEntities) {
        if (entity.name != name) continue;
        character = static_cast<UInt32>(entity.character);
        is_known = true;
      }
    }
  }
  if (!is_known) return Fail("Unknown entity or character number");
  at_ += name.size() + 2;
  return true;
}

template <typename Sink>
bool XmlScanner::WalkText(Sink&& sink) {
  bool is_in_section = false;
  for (;;) {
    if (at_ == end_) return Fail("Unexpected end");
    char const c = *at_;
    UInt32 character = static_cast<unsigned char>(c);
    if (!kEndsPlainText[character]) {
      if (c == ']' && is_in_section && StartsWith("]]>")) {
        is_in_section = false;
        at_ += 3;
        continue;
      }
      ++at_;
    } else if (character >= 0x80) {
      std::size_t const size = encodings::TakeUtf8(reinterpret_cast<UInt8 const*>(at_),
                                                   static_cast<std::size_t>(end_ - at_), character);
      if (size == 0) return Fail("Malformed UTF-8");
      at_ += size;
    } else if (is_in_section) {
      ++at_;
    } else if (c == '&') {
      if (!TakeReference(character)) return false;
    } else if (StartsWith(kSection)) {
      is_in_section = true;
      at_ += kSection.size();
      continue;
    } else if (StartsWith("<!--")) {
      // The space behind belongs to the text.
      at_ += 4;
      if (!SkipComment()) return false;
      continue;
    } else if (StartsWith("<?")) {
      if (!SkipInstruction()) return false;
      continue;
    } else {
      return true;
    }
    sink(character);
  }
}

CFStringRef XmlScanner::TakeString(ObjectBlocks& blocks) {
  char const* const start = at_;
  std::size_t length = 0;
  UInt32 all = 0;
  if (!WalkText([&](UInt32 character) {
        length += character < 0x10000 ? 1 : 2;
        all |= character;
      })) {
    return nullptr;
  }
  at_ = start;
  if (all < 0x80) {
    auto const fill = [&](UInt8* out) {
      WalkText([&](UInt32 character) { *out++ = static_cast<UInt8>(character); });
    };
    return __CFString::FillAscii(length, fill, &blocks);
  }
  auto const fill = [&](UniChar* out) {
    WalkText([&](UInt32 character) {
      if (character >= 0x10000) {
        *out++ = static_cast<UniChar>(0xD7C0 + (character >> 10));
        character = 0xDC00 + (character & 0x3FF);
      }
      *out++ = static_cast<UniChar>(character);
    });
  };
  return __CFString::FillUnits(length, fill, &blocks);
}
