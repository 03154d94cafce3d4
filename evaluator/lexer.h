// The text of an expression as tokens.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "evaluator/diagnostics.h"

namespace gatotu {

enum class TokenKind : std::uint8_t {
  kEnd,
  kWord,      // not reserved: part of a phrase, or a word of the grammar where it expects one
  kReserved,  // one of the words that are never part of a phrase
  kString,
  kInteger,
  kSign,  // punctuation and operator signs
};

enum class ReservedWord : std::uint8_t {
  kNone,
  kAnd,
  kAs,
  kElse,
  kExists,
  kFalse,
  kIf,
  kIs,
  kIt,
  kMod,
  kNot,
  kOf,
  kOr,
  kThen,
  kTrue,
  kWhose,
};

struct Token {
  TokenKind kind = TokenKind::kEnd;
  ReservedWord reserved = ReservedWord::kNone;
  Span span;
  // A word in lower case, a sign as written, the bytes of a string.
  std::string text;
  // Up to 2^63: the magnitude of the smallest integer can be told from a larger one.
  std::uint64_t integer = 0;
};

// The tokens, the last of which is kEnd. What is none is reported and passed over.
std::vector<Token> Tokenise(std::string_view text, Diagnostics& diagnostics);

}  // namespace gatotu
