#include "evaluator/parser.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "evaluator/aggregate_words.h"
#include "evaluator/comparison_words.h"
#include "evaluator/lexer.h"
#include "evaluator/token_stream.h"

namespace gatotu {
namespace {

// Recursive descent, one function a rule, loosest binding first. A rule that fails has reported
// why and answers null; the callers pass that on.
class Parser {
 public:
  Parser(std::vector<Token> tokens, VocabularyIndex& vocabulary, Diagnostics& diagnostics,
         SyntaxTree& tree)
      : tokens_(std::move(tokens)),
        vocabulary_(vocabulary),
        diagnostics_(diagnostics),
        tree_(tree) {}

  SyntaxNode* Run() {
    if (tokens_.Peek().kind == TokenKind::kEnd) {
      if (diagnostics_.IsEmpty()) Fail("expected-expression", "there is no expression here");
      return nullptr;
    }
    SyntaxNode* root = ParseCollection();
    if (root != nullptr && tokens_.Peek().kind != TokenKind::kEnd) {
      return Fail("unexpected-token", DescribeUnexpected());
    }
    return root;
  }

 private:
  // Counts the nesting for as long as a rule is at work.
  class Level {
   public:
    explicit Level(Parser& parser) : parser_(parser) { ++parser_.depth_; }
    ~Level() { --parser_.depth_; }

   private:
    Parser& parser_;
  };

  SyntaxNode* Fail(std::string_view code, std::string message) {
    Span span = tokens_.Peek().span;
    diagnostics_.Report(code, span, std::move(message));
    return nullptr;
  }

  bool IsTooDeep() {
    if (depth_ <= kMaxNesting) return false;
    Fail("nesting-too-deep",
         "this is nested deeper than " + std::to_string(kMaxNesting) + " levels");
    return true;
  }

  bool IsChainTooLong(std::size_t links) {
    if (links <= static_cast<std::size_t>(kMaxChain)) return false;
    Fail("chain-too-long",
         "more than " + std::to_string(kMaxChain) + " operands stand in a row here");
    return true;
  }

  std::string DescribeUnexpected() const {
    Token const& token = tokens_.Peek();
    switch (token.kind) {
      case TokenKind::kEnd:
        return "the expression ends too early";
      case TokenKind::kSign:
      case TokenKind::kReserved:
        return "\"" + token.text + "\" is not expected here";
      case TokenKind::kWord:
        return "the word \"" + token.text + "\" is not expected here";
      default:
        return "a literal is not expected here";
    }
  }

  bool Expect(bool taken, char const* what) {
    if (taken) return true;
    Fail("expected-token", std::string("expected ") + what);
    return false;
  }

  // item { separator item }: the items flat in one node, a single item itself.
  template <class Item, class TakeSeparator>
  SyntaxNode* ParseFlat(SyntaxKind kind, Item item, TakeSeparator take_separator) {
    SyntaxNode* first = (this->*item)();
    if (first == nullptr) return nullptr;
    SyntaxNode* node = nullptr;
    for (Span span = tokens_.Peek().span; take_separator(); span = tokens_.Peek().span) {
      if (node == nullptr) {
        node = tree_.Add(kind, span);
        node->children.push_back(first);
      }
      SyntaxNode* next = (this->*item)();
      if (next == nullptr) return nullptr;
      node->children.push_back(next);
    }
    return node != nullptr ? node : first;
  }

  SyntaxNode* ParseCollection() {
    Level level(*this);
    if (IsTooDeep()) return nullptr;
    return ParseFlat(SyntaxKind::kCollection, &Parser::ParseTuple,
                     [&] { return tokens_.TakeSign(";"); });
  }

  SyntaxNode* ParseTuple() {
    SyntaxNode* node =
        ParseFlat(SyntaxKind::kTuple, &Parser::ParseChoice, [&] { return tokens_.TakeSign(","); });
    if (node != nullptr && node->kind == SyntaxKind::kTuple &&
        IsChainTooLong(node->children.size())) {
      return nullptr;
    }
    return node;
  }

  SyntaxNode* ParseChoice() {
    if (!tokens_.IsReserved(ReservedWord::kIf)) return ParseFallback();
    Level level(*this);
    if (IsTooDeep()) return nullptr;
    SyntaxNode* node = tree_.Add(SyntaxKind::kIf, tokens_.Take().span);
    SyntaxNode* condition = ParseChoice();
    if (condition == nullptr) return nullptr;
    if (!Expect(tokens_.TakeReserved(ReservedWord::kThen), "\"then\"")) return nullptr;
    SyntaxNode* then = ParseChoice();
    if (then == nullptr) return nullptr;
    if (!Expect(tokens_.TakeReserved(ReservedWord::kElse), "\"else\"")) return nullptr;
    SyntaxNode* otherwise = ParseChoice();
    if (otherwise == nullptr) return nullptr;
    node->children = {condition, then, otherwise};
    return node;
  }

  SyntaxNode* ParseFallback() {
    return ParseFlat(SyntaxKind::kFallback, &Parser::ParseDisjunction,
                     [&] { return tokens_.TakeSign("|"); });
  }

  SyntaxNode* ParseDisjunction() {
    return ParseFlat(SyntaxKind::kOr, &Parser::ParseConjunction,
                     [&] { return tokens_.TakeReserved(ReservedWord::kOr); });
  }

  SyntaxNode* ParseConjunction() {
    return ParseFlat(SyntaxKind::kAnd, &Parser::ParseNegation,
                     [&] { return tokens_.TakeReserved(ReservedWord::kAnd); });
  }

  SyntaxNode* ParsePrefixed(SyntaxKind kind, SyntaxNode* (Parser::*operand)()) {
    Level level(*this);
    if (IsTooDeep()) return nullptr;
    SyntaxNode* node = tree_.Add(kind, tokens_.Take().span);
    SyntaxNode* child = (this->*operand)();
    if (child == nullptr) return nullptr;
    node->children = {child};
    return node;
  }

  SyntaxNode* ParseNegation() {
    if (tokens_.IsReserved(ReservedWord::kNot)) {
      return ParsePrefixed(SyntaxKind::kNot, &Parser::ParseNegation);
    }
    return ParseRelation();
  }

  SyntaxNode* ParseRelation() {
    SyntaxNode* left = ParseSum();
    if (left == nullptr) return nullptr;
    auto words = MatchComparison(tokens_);
    if (!words) return left;
    SyntaxNode* node = tree_.Add(SyntaxKind::kCompare, tokens_.SpanAhead(words->tokens));
    node->comparison = words->comparison;
    tokens_.Skip(words->tokens);
    SyntaxNode* right = ParseSum();
    if (right == nullptr) return nullptr;
    node->children = {left, right};
    if (MatchComparison(tokens_)) {
      return Fail("chained-comparison",
                  "a comparison cannot be compared again without parentheses");
    }
    return node;
  }

  // 0 when the token here is none of the operators of the rule.
  int SumOperator() const {
    if (tokens_.IsSign("+")) return kOperatorAdd;
    if (tokens_.IsSign("-")) return kOperatorSubtract;
    return tokens_.IsSign("&") ? kOperatorJoin : 0;
  }
  int ProductOperator() const {
    if (tokens_.IsSign("*")) return kOperatorMultiply;
    if (tokens_.IsSign("/")) return kOperatorDivide;
    return tokens_.IsReserved(ReservedWord::kMod) ? kOperatorModulo : 0;
  }

  SyntaxNode* ParseChain(SyntaxNode* (Parser::*operand)(), int (Parser::*operator_here)() const) {
    std::size_t outside = std::exchange(links_, 0);
    SyntaxNode* left = (this->*operand)();
    while (left != nullptr) {
      int code = (this->*operator_here)();
      if (code == 0) break;
      std::size_t links_of_left = std::exchange(links_, 0);
      SyntaxNode* node = tree_.Add(SyntaxKind::kArithmetic, tokens_.Take().span);
      node->operator_code = code;
      SyntaxNode* right = (this->*operand)();
      links_ = std::max(links_of_left, links_) + 1;
      if (right == nullptr || IsChainTooLong(links_ + 1)) return nullptr;
      node->children = {left, right};
      left = node;
    }
    links_ = std::max(outside, links_);
    return left;
  }

  SyntaxNode* ParseSum() { return ParseChain(&Parser::ParseProduct, &Parser::SumOperator); }
  SyntaxNode* ParseProduct() { return ParseChain(&Parser::ParseUnary, &Parser::ProductOperator); }

  SyntaxNode* ParseUnary() {
    if (tokens_.IsReserved(ReservedWord::kExists)) {
      return ParsePrefixed(SyntaxKind::kExists, &Parser::ParseUnary);
    }
    return ParseCast();
  }

  SyntaxNode* ParseCast() {
    std::size_t outside = std::exchange(links_, 0);
    SyntaxNode* operand = ParseSign();
    while (operand != nullptr && tokens_.TakeReserved(ReservedWord::kAs)) {
      if (IsChainTooLong(++links_ + 1)) return nullptr;
      std::size_t words = CountCastWords();
      if (words == 0) return Fail("expected-cast", "expected the name of a cast behind \"as\"");
      SyntaxNode* node = tree_.Add(SyntaxKind::kCast, tokens_.SpanAhead(words));
      node->text = JoinWords(words);
      tokens_.Skip(words);
      node->children = {operand};
      operand = node;
    }
    links_ = std::max(outside, links_);
    return operand;
  }

  // The longest cast that the vocabulary knows; of unknown words all up to what ends them.
  std::size_t CountCastWords() {
    std::size_t run = tokens_.CountWords();
    for (std::size_t words = std::min(run, vocabulary_.LongestCast()); words > 0; --words) {
      if (vocabulary_.IsCastName(JoinWords(words))) return words;
    }
    return CountUnknownWords();
  }

  SyntaxNode* ParseSign() {
    if (!tokens_.IsSign("-")) return ParseReference();
    if (tokens_.Peek(1).kind == TokenKind::kInteger && !IsObjectAhead(2)) {
      Span sign = tokens_.Take().span;
      Token const& token = tokens_.Take();
      SyntaxNode* node = tree_.Add(SyntaxKind::kInteger, Covering(sign, token.span));
      node->integer = static_cast<std::int64_t>(-token.integer);
      return node;
    }
    return ParsePrefixed(SyntaxKind::kNegate, &Parser::ParseSign);
  }

  // Whether what stands there takes the literal before it as a primary of its own.
  bool IsObjectAhead(std::size_t ahead) const {
    return tokens_.IsReserved(ReservedWord::kOf, ahead) ||
           tokens_.IsReserved(ReservedWord::kWhose, ahead);
  }

  // head [whose (...)] { of head [whose (...)] }, then folded from the right.
  SyntaxNode* ParseReference() {
    std::vector<SyntaxNode*> chain;
    int depth = depth_;
    do {
      SyntaxNode* head = IsTooDeep() ? nullptr : ParseHead();
      if (head == nullptr) {
        depth_ = depth;
        return nullptr;
      }
      chain.push_back(head);
      ++depth_;
    } while (tokens_.TakeReserved(ReservedWord::kOf));
    depth_ = depth;
    SyntaxNode* object = nullptr;
    while (!chain.empty()) {
      object = object == nullptr ? chain.back() : Attach(chain.back(), object);
      chain.pop_back();
    }
    return object;
  }

  SyntaxNode* Attach(SyntaxNode* head, SyntaxNode* object) {
    bool takes_object = head->kind == SyntaxKind::kProperty || head->kind == SyntaxKind::kUnknown ||
                        head->kind == SyntaxKind::kAggregate || head->kind == SyntaxKind::kItem;
    if (takes_object && head->object == nullptr) {
      head->object = object;
      return head;
    }
    SyntaxNode* map = tree_.Add(SyntaxKind::kMap, head->span);
    map->children = {head};
    map->object = object;
    return map;
  }

  SyntaxNode* ParseHead() {
    bool is_phrase = false;
    SyntaxNode* head = ParsePhraseOrPrimary(is_phrase);
    if (head == nullptr || !tokens_.IsReserved(ReservedWord::kWhose)) return head;
    Span span = tokens_.Take().span;
    SyntaxNode* condition = ParseCondition();
    if (condition == nullptr) return nullptr;
    if (is_phrase) {
      head->condition = condition;
      return head;
    }
    SyntaxNode* filter = tree_.Add(SyntaxKind::kFilter, span);
    filter->children = {head};
    filter->condition = condition;
    return filter;
  }

  SyntaxNode* ParseCondition() {
    if (!Expect(tokens_.TakeSign("("), "\"(\" behind \"whose\"")) return nullptr;
    Level level(*this);
    if (IsTooDeep()) return nullptr;
    SyntaxNode* condition = ParseChoice();
    if (condition == nullptr || !Expect(tokens_.TakeSign(")"), "\")\"")) return nullptr;
    return condition;
  }

  SyntaxNode* ParsePhraseOrPrimary(bool& is_phrase) {
    if (tokens_.Peek().kind != TokenKind::kWord) return ParsePrimary();
    std::size_t phrase = CountPhraseWords();
    auto aggregate = MatchAggregate(tokens_);
    if (aggregate && aggregate->tokens >= phrase) return ParseAggregate(*aggregate);
    if (tokens_.IsWord("item") && phrase <= 1 && tokens_.Peek(1).kind == TokenKind::kInteger) {
      return ParseItem();
    }
    is_phrase = true;
    return ParsePhrase(phrase);
  }

  SyntaxNode* ParseAggregate(AggregateWords words) {
    SyntaxNode* node = tree_.Add(SyntaxKind::kAggregate, tokens_.SpanAhead(words.tokens));
    node->aggregate = words.aggregate;
    tokens_.Skip(words.tokens);
    if (tokens_.Peek().kind == TokenKind::kString) {
      node->has_separator = true;
      node->text = tokens_.Take().text;
    }
    return node;
  }

  SyntaxNode* ParseItem() {
    SyntaxNode* node = tree_.Add(SyntaxKind::kItem, tokens_.SpanAhead(2));
    tokens_.Take();
    node->integer = static_cast<std::int64_t>(
        std::min<std::uint64_t>(tokens_.Take().integer, std::numeric_limits<std::int64_t>::max()));
    if (!tokens_.IsReserved(ReservedWord::kOf)) {
      return Fail("expected-token", "expected \"of\" and a tuple behind \"item\"");
    }
    return node;
  }

  std::string JoinWords(std::size_t count) const {
    std::string joined;
    for (std::size_t i = 0; i < count; ++i) {
      if (i > 0) joined += ' ';
      joined += tokens_.Peek(i).text;
    }
    return joined;
  }

  // The words of the longest known phrase here; 0 for none.
  std::size_t CountPhraseWords() const {
    std::size_t const run = tokens_.CountWords();
    if (run == 0) return 0;
    for (std::size_t words = std::min(run, vocabulary_.LongestPhrase()); words > 0; --words) {
      if (vocabulary_.FindPhrase(JoinWords(words)) != nullptr) return words;
    }
    return 0;
  }

  std::size_t CountUnknownWords() const {
    std::size_t run = tokens_.CountWords();
    std::size_t words = 0;
    while (words < run && !(words > 0 && BeginsComparison(tokens_, words))) ++words;
    return words;
  }

  SyntaxNode* ParsePhrase(std::size_t words) {
    // A word behind a phrase continues nothing, so the whole run is one unknown phrase.
    bool is_known =
        words > 0 && (words == tokens_.CountWords() || BeginsComparison(tokens_, words));
    if (!is_known) words = CountUnknownWords();
    SyntaxNode* node = tree_.Add(is_known ? SyntaxKind::kProperty : SyntaxKind::kUnknown,
                                 tokens_.SpanAhead(words));
    node->text = JoinWords(words);
    tokens_.Skip(words);
    return ParseParameter(*node) ? node : nullptr;
  }

  bool ParseParameter(SyntaxNode& node) {
    TokenKind kind = tokens_.Peek().kind;
    if (kind == TokenKind::kString || kind == TokenKind::kInteger) {
      node.parameter = ParseLiteral();
      return node.parameter != nullptr;
    }
    if (!tokens_.IsSign("(")) return true;
    node.parameter = ParseParentheses();
    return node.parameter != nullptr;
  }

  SyntaxNode* ParseParentheses() {
    tokens_.Take();
    SyntaxNode* inner = ParseCollection();
    if (inner == nullptr || !Expect(tokens_.TakeSign(")"), "\")\"")) return nullptr;
    // A collection of one, so that a `whose` or an `of` behind the parentheses applies to the
    // whole and not to the phrase inside.
    SyntaxNode* seal = tree_.Add(SyntaxKind::kCollection, inner->span);
    seal->children = {inner};
    return seal;
  }

  SyntaxNode* ParseLiteral() {
    Token const& token = tokens_.Peek();
    if (token.kind == TokenKind::kString) {
      SyntaxNode* node = tree_.Add(SyntaxKind::kString, token.span);
      node->text = tokens_.Take().text;
      return node;
    }
    if (token.integer > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
      return Fail("integer-too-large", "this integer is larger than 9223372036854775807");
    }
    SyntaxNode* node = tree_.Add(SyntaxKind::kInteger, token.span);
    node->integer = static_cast<std::int64_t>(tokens_.Take().integer);
    return node;
  }

  SyntaxNode* ParsePrimary() {
    Token const& token = tokens_.Peek();
    if (token.kind == TokenKind::kString || token.kind == TokenKind::kInteger) {
      return ParseLiteral();
    }
    if (tokens_.IsSign("(")) return ParseParentheses();
    if (tokens_.IsReserved(ReservedWord::kIt)) {
      return tree_.Add(SyntaxKind::kIt, tokens_.Take().span);
    }
    bool is_true = tokens_.IsReserved(ReservedWord::kTrue);
    if (is_true || tokens_.IsReserved(ReservedWord::kFalse)) {
      SyntaxNode* node = tree_.Add(SyntaxKind::kBoolean, tokens_.Take().span);
      node->integer = is_true ? 1 : 0;
      return node;
    }
    return Fail(token.kind == TokenKind::kEnd ? "expected-expression" : "unexpected-token",
                DescribeUnexpected());
  }

  TokenStream tokens_;
  VocabularyIndex& vocabulary_;
  Diagnostics& diagnostics_;
  SyntaxTree& tree_;
  int depth_ = -1;  // the expression as a whole is no nesting
  // The links of chains on the deepest way down what the rule at work has parsed so far: chains
  // lean to the left, so one that begins with another in parentheses deepens it.
  std::size_t links_ = 0;
};

}  // namespace

SyntaxTree ParseExpression(std::string_view text, VocabularyIndex& vocabulary,
                           Diagnostics& diagnostics) {
  SyntaxTree tree;
  if (text.size() > kMaxText) {
    diagnostics.Report("text-too-long", {0, 0}, "the expression is longer than 1 MiB");
    return tree;
  }
  std::vector<Token> tokens = Tokenise(text, diagnostics);
  tree.root = Parser(std::move(tokens), vocabulary, diagnostics, tree).Run();
  return tree;
}

}  // namespace gatotu
