// The type of a node of a compiled expression: a registered type or a tuple of types. Interned in
// the expression, so that equal types have one address.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "evaluator/evaluator.h"
#include "evaluator/vocabulary_index.h"

namespace gatotu {

struct StaticType {
  TypeEntry const* entry = nullptr;  // null for a tuple
  std::vector<StaticType const*> members;

  bool IsTuple() const { return entry == nullptr; }
  // "string", "(string, integer)".
  std::string Name() const;
  // With its article, for messages: "an integer", "the world".
  std::string NameWithArticle() const;
};

class StaticTypes {
 public:
  StaticType const* Of(TypeEntry const& entry);
  StaticType const* OfTuple(std::vector<StaticType const*> members);

 private:
  std::deque<StaticType> types_;
};

// The nearest type that both are or derive from; null when there is none.
StaticType const* CommonType(StaticType const* a, StaticType const* b, StaticTypes& types);

ValueType MakeValueType(StaticType const& type);

}  // namespace gatotu
