#include "evaluator/compiler.h"

#include "evaluator/aggregate_plans.h"
#include "evaluator/expression_compiler.h"
#include "evaluator/kept_plan.h"

namespace gatotu {

PlanPointer Compiler::Run(SyntaxNode const& root) {
  Typed typed = Compile(root);
  return diagnostics_.IsEmpty() && typed ? Keep(std::move(typed.plan)) : nullptr;
}

Compiler::Typed Compiler::Compile(SyntaxNode const& node) {
  switch (node.kind) {
    case SyntaxKind::kString:
      return Literal(std::make_unique<StringPlan>(node.text), vocabulary_.String(), node);
    case SyntaxKind::kInteger:
      return Literal(std::make_unique<IntegerPlan>(node.integer), vocabulary_.Integer(), node);
    case SyntaxKind::kBoolean:
      return Literal(std::make_unique<BooleanPlan>(node.integer != 0), vocabulary_.Boolean(), node);
    case SyntaxKind::kIt:
      return CompileIt(node);
    case SyntaxKind::kProperty:
    case SyntaxKind::kUnknown:
      return CompileProperty(node);
    case SyntaxKind::kMap:
      return CompileMap(node);
    case SyntaxKind::kFilter:
      return Filter(Compile(*node.children[0]), node);
    case SyntaxKind::kItem:
      return CompileItem(node);
    case SyntaxKind::kAggregate:
      return CompileAggregate(node);
    case SyntaxKind::kCollection:
    case SyntaxKind::kFallback:
      return CompileAlternatives(node);
    case SyntaxKind::kTuple:
      return CompileTuple(node);
    case SyntaxKind::kIf:
      return CompileChoice(node);
    case SyntaxKind::kOr:
      return CompileJunction(node, false);
    case SyntaxKind::kAnd:
      return CompileJunction(node, true);
    case SyntaxKind::kNot:
      return CompileNot(node);
    case SyntaxKind::kExists:
      return CompileExists(node);
    case SyntaxKind::kCompare:
      return CompileCompare(node);
    case SyntaxKind::kArithmetic:
      return CompileArithmetic(node);
    case SyntaxKind::kNegate:
      return CompileNegate(node);
    case SyntaxKind::kCast:
      return CompileCast(node);
  }
  return {};
}

PlanPointer Compiler::Keep(PlanPointer plan) {
  bool is_literal = dynamic_cast<StringPlan*>(plan.get()) != nullptr ||
                    dynamic_cast<IntegerPlan*>(plan.get()) != nullptr ||
                    dynamic_cast<BooleanPlan*>(plan.get()) != nullptr;
  bool can_be_kept = plan->is_constant && !plan->is_many && !is_literal && !plan->type->IsTuple() &&
                     ValueOrder::IsBuiltIn(*plan->type->entry);
  if (!can_be_kept) return plan;
  StaticType const* type = plan->type;
  Span span = plan->span;
  return Finish(std::make_unique<KeptPlan>(std::move(plan)), type, span, false, true).plan;
}

void Compiler::KeepUnless(bool is_constant, PlanPointer& child) {
  if (!is_constant && child != nullptr) child = Keep(std::move(child));
}

bool Compiler::IsUsable(TypeEntry const& type, Span span, std::string_view phrase) {
  if (type.is_registered) return true;
  diagnostics_.Report("unregistered-type", span,
                      "\"" + std::string(phrase) + "\" gives a type \"" + type.name +
                          "\" that nothing has registered");
  return false;
}

bool Compiler::RequireOne(Typed const& typed, Span span) {
  if (!typed || !typed.plan->is_many) return typed.plan != nullptr;
  diagnostics_.Report("plural-operand", span, "exactly one value is needed here, not any number");
  return false;
}

bool Compiler::RequireBoolean(Typed const& typed, Span span) {
  if (typed.type == nullptr) return false;
  if (typed.type->IsTuple() || typed.type->entry != &vocabulary_.Boolean()) {
    diagnostics_.Report("not-boolean", span,
                        "a boolean is needed here, not " + typed.type->NameWithArticle());
    return false;
  }
  return RequireOne(typed, span);
}

TypeEntry const* Compiler::RequireObject(Typed const& typed, Span span) {
  if (typed.type == nullptr) return nullptr;
  if (!typed.type->IsTuple()) return typed.type->entry;
  diagnostics_.Report("tuple-operand", span,
                      "this is a tuple; its members are asked for by \"item 0 of\" and so on");
  return nullptr;
}

PlanPointer CompileSyntax(SyntaxNode const& root, VocabularyIndex& vocabulary, StaticTypes& types,
                          FrameLayout& layout, Diagnostics& diagnostics) {
  return Compiler(vocabulary, types, layout, diagnostics).Run(root);
}

}  // namespace gatotu
