#include "evaluator/aggregate_plans.h"
#include "evaluator/aggregate_words.h"
#include "evaluator/expression_compiler.h"

namespace gatotu {

Compiler::Typed Compiler::CompileAggregate(SyntaxNode const& node) {
  Typed source = Compile(*node.object);
  if (node.aggregate == Aggregate::kNumber) {
    if (!source) return {nullptr, types_.Of(vocabulary_.Integer())};
    return FinishAggregate(std::make_unique<NumberPlan>(), std::move(source),
                           types_.Of(vocabulary_.Integer()), node);
  }
  if (source.type == nullptr) return {};
  if (node.aggregate == Aggregate::kFirst) {
    if (!source) return source;
    StaticType const* type = source.type;
    return FinishAggregate(std::make_unique<FirstPlan>(), std::move(source), type, node);
  }
  if (!RequireCopyable(source, node)) return {};
  return CompileCopyingAggregate(node, std::move(source));
}

Compiler::Typed Compiler::FinishAggregate(std::unique_ptr<CompositePlan> plan, Typed source,
                                          StaticType const* type, SyntaxNode const& node) {
  plan->children.push_back(std::move(source.plan));
  bool is_many = node.aggregate == Aggregate::kUniqueValues;
  return FinishComposite(std::move(plan), type, node.span, is_many);
}

bool Compiler::RequireCopyable(Typed const& source, SyntaxNode const& node) {
  if (!source.type->IsTuple() && source.type->entry->is_copyable) return true;
  diagnostics_.Report("not-copyable", node.span,
                      "\"" + std::string(NameOf(node.aggregate)) + "\" cannot hold " +
                          source.type->NameWithArticle() + "; ask for a property of it");
  return false;
}

Compiler::Typed Compiler::CompileCopyingAggregate(SyntaxNode const& node, Typed source) {
  StaticType const* type = source.type;
  TypeEntry const& entry = *type->entry;
  std::unique_ptr<CompositePlan> plan;
  switch (node.aggregate) {
    case Aggregate::kLast:
      plan = std::make_unique<LastPlan>(layout_);
      break;
    case Aggregate::kConcatenation:
      if (entry.kind == ValueType::Kind::kString) {
        plan = std::make_unique<ConcatenationPlan>(node.text, layout_);
      }
      break;
    case Aggregate::kSum:
      plan = MakeSum(entry);
      break;
    default:
      plan = MakeOrdered(node.aggregate, entry);
      break;
  }
  if (plan == nullptr) {
    diagnostics_.Report(
        "aggregate-mismatch", node.span,
        "\"" + std::string(NameOf(node.aggregate)) + "\" does not take " + type->NameWithArticle());
    return {nullptr, type};
  }
  if (!source) return {nullptr, type};
  return FinishAggregate(std::move(plan), std::move(source), type, node);
}

std::unique_ptr<CompositePlan> Compiler::MakeSum(TypeEntry const& entry) {
  if (entry.kind == ValueType::Kind::kInteger) return std::make_unique<IntegerSumPlan>();
  auto const* add = vocabulary_.FindOperator(kOperatorAdd, entry, entry);
  bool sums = add != nullptr && add->result == &entry;
  return sums ? std::make_unique<SumPlan>(*add, layout_) : nullptr;
}

std::unique_ptr<CompositePlan> Compiler::MakeOrdered(Aggregate aggregate, TypeEntry const& entry) {
  OperatorEntry const* less = vocabulary_.FindOperator(kOperatorLess, entry, entry);
  if (!ValueOrder::IsBuiltIn(entry) &&
      (less == nullptr || less->result != &vocabulary_.Boolean())) {
    return nullptr;
  }
  ValueOrder order(entry, less);
  if (aggregate == Aggregate::kUniqueValues) {
    return std::make_unique<UniqueValuesPlan>(order, layout_);
  }
  return std::make_unique<ExtremePlan>(aggregate == Aggregate::kMaximum, order, layout_);
}

}  // namespace gatotu
