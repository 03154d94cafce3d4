// The tokens of an expression with a place in them, and the words of the grammar at that place.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "evaluator/lexer.h"

namespace gatotu {

class TokenStream {
 public:
  explicit TokenStream(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

  // The token `ahead` places on; the end repeats itself.
  Token const& Peek(std::size_t ahead = 0) const {
    std::size_t index = at_ + ahead;
    return tokens_[index < tokens_.size() ? index : tokens_.size() - 1];
  }
  Token const& Take() {
    Token const& token = Peek();
    if (at_ + 1 < tokens_.size()) ++at_;
    return token;
  }
  void Skip(std::size_t count) {
    while (count-- > 0) Take();
  }

  bool IsSign(std::string_view sign, std::size_t ahead = 0) const {
    return Peek(ahead).kind == TokenKind::kSign && Peek(ahead).text == sign;
  }
  bool IsReserved(ReservedWord word, std::size_t ahead = 0) const {
    return Peek(ahead).reserved == word;
  }
  bool IsWord(std::string_view word, std::size_t ahead = 0) const {
    return Peek(ahead).kind == TokenKind::kWord && Peek(ahead).text == word;
  }
  bool AreWords(std::initializer_list<std::string_view> words, std::size_t ahead = 0) const {
    for (std::string_view word : words) {
      if (!IsWord(word, ahead++)) return false;
    }
    return true;
  }
  bool TakeSign(std::string_view sign) {
    if (!IsSign(sign)) return false;
    Take();
    return true;
  }
  bool TakeReserved(ReservedWord word) {
    if (!IsReserved(word)) return false;
    Take();
    return true;
  }

  // From the token at `first` places ahead over `count` tokens.
  Span SpanAhead(std::size_t count) const {
    return Covering(Peek().span, Peek(count > 0 ? count - 1 : 0).span);
  }

  // How many words that are no reserved ones stand here in a row.
  std::size_t CountWords() const {
    std::size_t count = 0;
    while (Peek(count).kind == TokenKind::kWord) ++count;
    return count;
  }

 private:
  std::vector<Token> tokens_;
  std::size_t at_ = 0;
};

}  // namespace gatotu
