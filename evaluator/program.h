// All that a compiled expression consists of.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "evaluator/evaluator.h"
#include "evaluator/plan.h"
#include "evaluator/static_type.h"
#include "evaluator/value_shower.h"
#include "evaluator/vocabulary_index.h"

namespace gatotu {

struct Expression::Program {
  std::string text;
  std::shared_ptr<VocabularyIndex> vocabulary;  // the plans point into it
  std::uint64_t generation = 0;                 // of the registry, when compiled
  StaticTypes types;
  FrameLayout layout;
  PlanPointer plan;
  ValueType type;
  std::optional<ValueShower> shower;
};

// What the evaluator's own sources see of an expression.
struct ExpressionAccess {
  static Expression::Program const& Of(Expression const& expression) {
    return *expression.program_;
  }
  static std::unique_ptr<Expression const> Make(std::unique_ptr<Expression::Program> program) {
    return std::unique_ptr<Expression const>(new Expression(std::move(program)));
  }
};

}  // namespace gatotu
