#include "evaluator/lexer.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "evaluator/ascii_case.h"
#include "evaluator/utf8.h"

namespace gatotu {
namespace {

struct Reserved {
  std::string_view word;
  ReservedWord value;
};

// Sorted by word. "exist" reads better behind a plural and means the same.
constexpr Reserved kReservedWords[] = {
    {"and", ReservedWord::kAnd},       {"as", ReservedWord::kAs},
    {"else", ReservedWord::kElse},     {"exist", ReservedWord::kExists},
    {"exists", ReservedWord::kExists}, {"false", ReservedWord::kFalse},
    {"if", ReservedWord::kIf},         {"is", ReservedWord::kIs},
    {"it", ReservedWord::kIt},         {"mod", ReservedWord::kMod},
    {"not", ReservedWord::kNot},       {"of", ReservedWord::kOf},
    {"or", ReservedWord::kOr},         {"then", ReservedWord::kThen},
    {"true", ReservedWord::kTrue},     {"whose", ReservedWord::kWhose},
};

constexpr std::uint64_t kLargestMagnitude = std::uint64_t{1} << 63;

ReservedWord FindReserved(std::string_view word) {
  auto found = std::lower_bound(
      std::begin(kReservedWords), std::end(kReservedWords), word,
      [](Reserved const& entry, std::string_view sought) { return entry.word < sought; });
  if (found == std::end(kReservedWords) || found->word != word) return ReservedWord::kNone;
  return found->value;
}

int HexValue(char c) {
  if (IsDigit(c)) return c - '0';
  c = LowerCaseAscii(c);
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

class Lexer {
 public:
  Lexer(std::string_view text, Diagnostics& diagnostics) : text_(text), diagnostics_(diagnostics) {
    tokens_.reserve(text.size() / 4 + 2);
  }

  std::vector<Token> Run() {
    while (SkipBlanks()) ReadToken();
    tokens_.push_back({TokenKind::kEnd, ReservedWord::kNone, {text_.size(), 0}, {}, 0});
    return std::move(tokens_);
  }

 private:
  char At(std::size_t i) const { return i < text_.size() ? text_[i] : '\0'; }

  // False at the end of the text.
  bool SkipBlanks() {
    while (at_ < text_.size()) {
      char c = text_[at_];
      if (c == ' ' || (c >= '\t' && c <= '\r')) {
        ++at_;
      } else if (c == '/' && At(at_ + 1) == '/') {
        at_ = std::min(text_.find('\n', at_), text_.size());
      } else if (c == '/' && At(at_ + 1) == '*') {
        SkipBlockComment();
      } else {
        return true;
      }
    }
    return false;
  }

  void SkipBlockComment() {
    std::size_t end = text_.find("*/", at_ + 2);
    if (end == std::string_view::npos) {
      diagnostics_.Report("unterminated-comment", {at_, 2}, "this comment has no end");
      at_ = text_.size();
    } else {
      at_ = end + 2;
    }
  }

  void ReadToken() {
    char c = text_[at_];
    if (IsWordStart(c)) return ReadWord();
    if (IsDigit(c)) return ReadInteger();
    if (c == '"') return ReadString();
    ReadSign();
  }

  Token& Add(TokenKind kind, std::size_t begin) {
    Token& token = tokens_.emplace_back();
    token.kind = kind;
    token.span = {begin, at_ - begin};
    return token;
  }

  void ReadWord() {
    std::size_t begin = at_;
    while (IsWordByte(At(at_))) ++at_;
    Token& token = Add(TokenKind::kWord, begin);
    token.text = text_.substr(begin, at_ - begin);
    for (char& c : token.text) c = LowerCaseAscii(c);
    token.reserved = FindReserved(token.text);
    if (token.reserved != ReservedWord::kNone) token.kind = TokenKind::kReserved;
  }

  void ReadInteger() {
    std::size_t begin = at_;
    std::uint64_t value = 0;
    bool fits = true;
    for (; IsDigit(At(at_)); ++at_) {
      unsigned digit = text_[at_] - '0';
      fits = fits && value <= (kLargestMagnitude - digit) / 10;
      if (fits) value = value * 10 + digit;
    }
    Add(TokenKind::kInteger, begin).integer = fits ? value : 0;
    if (!fits) {
      diagnostics_.Report("integer-too-large", {begin, at_ - begin},
                          "this integer is larger than 9223372036854775807");
    }
  }

  void ReadString() {
    std::size_t begin = at_++;
    std::string bytes;
    while (at_ < text_.size() && text_[at_] != '"') {
      if (text_[at_] == '\\') {
        ReadEscape(bytes);
      } else {
        bytes += text_[at_++];
      }
    }
    if (at_ == text_.size()) {
      diagnostics_.Report("unterminated-string", {begin, 1}, "this string has no end");
    } else {
      ++at_;
    }
    Add(TokenKind::kString, begin).text = std::move(bytes);
  }

  void ReadEscape(std::string& bytes) {
    std::size_t begin = at_++;
    char c = At(at_);
    if (at_ < text_.size()) ++at_;
    switch (c) {
      case '"':
      case '\\':
        bytes += c;
        return;
      case 'n':
        bytes += '\n';
        return;
      case 't':
        bytes += '\t';
        return;
      case 'x': {
        int high = HexValue(At(at_));
        int low = HexValue(At(at_ + 1));
        if (high >= 0 && low >= 0) {
          bytes += static_cast<char>(high * 16 + low);
          at_ += 2;
          return;
        }
      }
    }
    diagnostics_.Report("unknown-escape", {begin, at_ - begin},
                        "a string knows the escapes \\\" \\\\ \\n \\t and \\x with two digits");
  }

  void ReadSign() {
    static constexpr std::string_view kTwoBytes[] = {"!=", "<=", ">="};
    static constexpr std::string_view kOneByte = "=<>+-*/&|,;()";
    std::size_t begin = at_;
    std::string_view two = text_.substr(at_, 2);
    bool is_long =
        std::find(std::begin(kTwoBytes), std::end(kTwoBytes), two) != std::end(kTwoBytes);
    if (is_long || kOneByte.find(text_[at_]) != std::string_view::npos) {
      at_ += is_long ? 2 : 1;
      Add(TokenKind::kSign, begin).text = text_.substr(begin, at_ - begin);
      return;
    }
    // A run of what means nothing here is one mistake.
    while (at_ < text_.size() && IsStray(text_[at_])) at_ += CharacterSize(text_, at_);
    if (at_ == begin) ++at_;
    diagnostics_.Report("unknown-character", {begin, at_ - begin},
                        "this means nothing outside of a string");
  }

  static bool IsStray(char c) {
    auto byte = static_cast<unsigned char>(c);
    static constexpr std::string_view kMeaningful = "\"=<>+-*/&|,;()!";
    return byte > ' ' ? !IsWordByte(c) && kMeaningful.find(c) == std::string_view::npos
                      : !(byte == ' ' || (byte >= '\t' && byte <= '\r'));
  }

  std::string_view text_;
  Diagnostics& diagnostics_;
  std::size_t at_ = 0;
  std::vector<Token> tokens_;
};

}  // namespace

std::vector<Token> Tokenise(std::string_view text, Diagnostics& diagnostics) {
  return Lexer(text, diagnostics).Run();
}

}  // namespace gatotu
