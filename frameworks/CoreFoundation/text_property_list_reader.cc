#include "frameworks/CoreFoundation/text_property_list_reader.h"

#include <vector>

#include "frameworks/CoreFoundation/encodings/convert.h"
#include "frameworks/CoreFoundation/encodings/next_step.h"
#include "frameworks/CoreFoundation/property_list_builder.h"

namespace {

bool IsUnquoted(char c) {
  bool const is_letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return is_letter || (c >= '0' && c <= '9') ||
         (c != '\0' && std::string_view("_$/:.-").find(c) != std::string_view::npos);
}

int DigitOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 16;
}

// What a letter behind a backslash stands for; any other character stands for itself.
char ControlOf(char letter) {
  switch (letter) {
    case 'a':
      return '\a';
    case 'b':
      return '\b';
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case 'v':
      return '\v';
    default:
      return letter;
  }
}

// Reads one source. Functions answer whether it went well and keep the first failure.
class Reader {
 public:
  Reader(std::string_view text, CFOptionFlags options)
      : text_(text), builder_(options, text.size()) {}

  CFPropertyListRef ReadDocument(PropertyListError& error) {
    if (ReadRoot()) return builder_.TakeRoot();
    error.position = at_;
    error.message = failure_;
    return nullptr;
  }

 private:
  bool Fail(char const* message) {
    if (failure_ == nullptr) failure_ = message;
    return false;
  }

  bool ReadRoot() {
    if (!SkipSpace()) return false;
    if (IsAtEnd()) {
      builder_.MakeDictionary(0);
      return true;
    }
    std::size_t const start = at_;
    bool const is_string = StartsString();
    if (!ReadValue(1) || !SkipSpace()) return false;
    if (IsAtEnd()) return true;
    if (!is_string) return Fail("Text behind the end of the property list");
    // A string with more behind it is the first key of a `.strings` file.
    CFRelease(builder_.TakeRoot());
    at_ = start;
    return ReadPairs(1) && (IsAtEnd() || Fail("Text behind the end of the property list"));
  }

  bool IsAtEnd() const { return at_ == text_.size(); }
  bool StartsString() const {
    return !IsAtEnd() && (text_[at_] == '"' || text_[at_] == '\'' || IsUnquoted(text_[at_]));
  }
  bool StartsWith(std::string_view mark) const { return text_.substr(at_).starts_with(mark); }
  bool Take(char c) {
    if (IsAtEnd() || text_[at_] != c) return false;
    ++at_;
    return true;
  }

  // White space, the line and paragraph separators of Unicode, and comments.
  bool SkipSpace() {
    while (!IsAtEnd()) {
      char const c = text_[at_];
      if (c == ' ' || (c >= '\t' && c <= '\r')) {
        ++at_;
      } else if (StartsWith("\u2028") || StartsWith("\u2029")) {
        at_ += 3;
      } else if (StartsWith("//")) {
        at_ = std::min(text_.find_first_of("\r\n", at_), text_.size());
      } else if (StartsWith("/*")) {
        std::size_t const end = text_.find("*/", at_ + 2);
        if (end == text_.npos) return Fail("Unterminated comment");
        at_ = end + 2;
      } else {
        return true;
      }
    }
    return true;
  }

  bool ReadValue(int depth) {
    if (IsAtEnd()) return Fail("Unexpected end");
    if (StartsString()) return ReadString();
    if (Take('<')) return ReadData();
    bool const is_dictionary = Take('{');
    if (!is_dictionary && !Take('(')) return Fail("Unexpected character");
    if (depth > kPropertyListNesting) return Fail("Nested too deeply");
    if (!is_dictionary) return ReadArray(depth);
    return ReadPairs(depth) && (Take('}') || Fail("Missing } of a dictionary"));
  }

  bool ReadArray(int depth) {
    std::size_t const first = builder_.count();
    do {
      if (!SkipSpace()) return false;
      if (!IsAtEnd() && text_[at_] == ')') break;
      if (!ReadValue(depth + 1) || !SkipSpace()) return false;
    } while (Take(','));
    if (!Take(')')) return Fail("Missing ) of an array");
    builder_.MakeArray(first);
    return true;
  }

  // key = value; or key; for a string that is its own value.
  bool ReadPairs(int depth) {
    std::size_t const first = builder_.count();
    while (SkipSpace() && StartsString()) {
      std::size_t const key = at_;
      if (!ReadString() || !SkipSpace()) return false;
      if (Take('=')) {
        if (!SkipSpace() || !ReadValue(depth + 1)) return false;
      } else {
        at_ = key;
        if (!ReadString()) return false;
      }
      if (!SkipSpace()) return false;
      if (!Take(';')) return Fail("Missing ; in a dictionary");
    }
    if (failure_ != nullptr) return false;
    builder_.MakeDictionary(first);
    return true;
  }

  bool ReadData() {
    std::vector<UInt8> bytes;
    int high = 16;
    while (!Take('>')) {
      if (!SkipSpace()) return false;
      if (IsAtEnd()) return Fail("Unterminated data");
      if (text_[at_] == '>') continue;
      int const digit = DigitOf(text_[at_]);
      if (digit == 16) return Fail("Malformed data");
      ++at_;
      if (high == 16) {
        high = digit;
      } else {
        bytes.push_back(static_cast<UInt8>(high * 16 + digit));
        high = 16;
      }
    }
    if (high != 16) return Fail("Half a byte in data");
    builder_.AddData(bytes);
    return true;
  }

  bool ReadString() {
    if (text_[at_] == '"' || text_[at_] == '\'') return ReadQuoted(text_[at_]);
    std::size_t const start = at_;
    while (!IsAtEnd() && IsUnquoted(text_[at_])) ++at_;
    builder_.AddAscii(text_.substr(start, at_ - start));
    return true;
  }

  bool ReadQuoted(char quote) {
    std::size_t const start = at_++;
    units_.clear();
    while (!Take(quote)) {
      if (IsAtEnd()) {
        at_ = start;
        return Fail("Unterminated string");
      }
      if (!(Take('\\') ? ReadEscape() : ReadCharacter())) return false;
    }
    builder_.Add(__CFString::MakeUnits(units_.data(), units_.size(), &builder_.blocks()));
    return true;
  }

  bool ReadCharacter() {
    UInt32 character;
    std::size_t const size = encodings::TakeUtf8(reinterpret_cast<UInt8 const*>(text_.data()) + at_,
                                                 text_.size() - at_, character);
    if (size == 0) return Fail("Malformed UTF-8");
    at_ += size;
    if (character >= 0x10000) {
      units_.push_back(static_cast<UniChar>(0xD7C0 + (character >> 10)));
      character = 0xDC00 + (character & 0x3FF);
    }
    units_.push_back(static_cast<UniChar>(character));
    return true;
  }

  bool ReadEscape() {
    if (IsAtEnd()) return Fail("Unterminated string");
    if (Take('U')) {
      units_.push_back(static_cast<UniChar>(TakeNumber(16, 4)));
      return true;
    }
    if (DigitOf(text_[at_]) < 8) {
      // Bytes by number are in the encoding that the form was made for.
      int const byte = TakeNumber(8, 3) & 0xFF;
      units_.push_back(byte < 0x80 ? static_cast<UniChar>(byte)
                                   : encodings::kNextStep[static_cast<std::size_t>(byte - 0x80)]);
      return true;
    }
    char const control = ControlOf(text_[at_]);
    if (control == text_[at_]) return ReadCharacter();
    ++at_;
    units_.push_back(static_cast<UniChar>(control));
    return true;
  }

  int TakeNumber(int base, int most_digits) {
    int number = 0;
    for (; most_digits > 0 && !IsAtEnd() && DigitOf(text_[at_]) < base; --most_digits, ++at_) {
      number = number * base + DigitOf(text_[at_]);
    }
    return number;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  char const* failure_ = nullptr;
  PropertyListBuilder builder_;
  std::vector<UniChar> units_;  // of the string being read
};

}  // namespace

CFPropertyListRef ReadTextPropertyList(std::string_view text, CFOptionFlags options,
                                       PropertyListError& error) {
  return Reader(text, options).ReadDocument(error);
}
