// The tree of an expression as written, before any name is resolved.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "evaluator/diagnostics.h"
#include "evaluator/plugin/entry_points.h"

namespace gatotu {

enum class SyntaxKind : std::uint8_t {
  kString,   // text
  kInteger,  // integer
  kBoolean,  // integer 0 or 1
  kIt,
  kProperty,    // text: the phrase; parameter, condition, object: each may be null
  kUnknown,     // like kProperty, for words that no property is called
  kMap,         // (children[0]) of object
  kFilter,      // children[0] whose (condition)
  kItem,        // item integer of object
  kAggregate,   // aggregate; text: the separator; object
  kCollection,  // children
  kTuple,       // children
  kIf,          // children: condition, then, else
  kFallback,    // children
  kOr,          // children
  kAnd,         // children
  kNot,         // children[0]
  kExists,      // children[0]
  kCompare,     // comparison; children: left, right
  kArithmetic,  // operator_code; children: left, right
  kNegate,      // children[0]
  kCast,        // text: the name; children[0]
};

enum class Aggregate : std::uint8_t {
  kNone,
  kNumber,
  kUniqueValues,
  kSum,
  kMinimum,
  kMaximum,
  kConcatenation,
  kFirst,
  kLast,
};

// A comparison made of a registered operator: its operands may change places and its answer may
// be reversed.
struct Comparison {
  int operator_code = kOperatorEqual;
  bool swaps = false;
  bool negates = false;
};

struct SyntaxNode {
  SyntaxKind kind;
  Span span;  // of what is specific to the node: the phrase, the sign, the literal
  std::string text;
  std::int64_t integer = 0;
  Aggregate aggregate = Aggregate::kNone;
  int operator_code = 0;
  Comparison comparison;
  bool has_separator = false;
  std::vector<SyntaxNode*> children;
  SyntaxNode* parameter = nullptr;
  SyntaxNode* condition = nullptr;
  SyntaxNode* object = nullptr;
};

// Owns the nodes, side by side, so that no depth of a tree deepens a destructor.
class SyntaxTree {
 public:
  SyntaxNode* Add(SyntaxKind kind, Span span) {
    SyntaxNode& node = nodes_.emplace_back();
    node.kind = kind;
    node.span = span;
    return &node;
  }

  SyntaxNode* root = nullptr;  // null when the text could not be parsed

 private:
  std::deque<SyntaxNode> nodes_;
};

}  // namespace gatotu
