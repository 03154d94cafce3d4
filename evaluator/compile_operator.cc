#include "evaluator/expression_compiler.h"
#include "evaluator/operator_signs.h"
#include "evaluator/reference_plans.h"
#include "evaluator/spelling.h"

namespace gatotu {

OperatorEntry const* Compiler::FindOperator(int code, TypeEntry const& left, TypeEntry const& right,
                                            bool& swaps) {
  if (auto const* found = vocabulary_.FindOperator(code, left, right)) return found;
  if (code != kOperatorEqual) return nullptr;
  swaps = !swaps;
  return vocabulary_.FindOperator(code, right, left);
}

void Compiler::ReportOperands(SyntaxNode const& node, std::string_view sign, Typed const& left,
                              Typed const& right) {
  // `process -1` is a difference, which the eye does not see.
  std::vector<std::string> notes;
  if (sign == "-" && node.children[1]->kind == SyntaxKind::kInteger) {
    notes.push_back("a negative parameter stands in parentheses");
  }
  diagnostics_.Report("operator-mismatch", node.span,
                      "\"" + std::string(sign) + "\" does not take " +
                          left.type->NameWithArticle() + " and " + right.type->NameWithArticle(),
                      {}, std::move(notes));
}

Compiler::Typed Compiler::CompileOperator(SyntaxNode const& node, int code, bool swaps) {
  Typed left = Compile(*node.children[0]);
  Typed right = Compile(*node.children[1]);
  if (left.type == nullptr || right.type == nullptr) return {};
  bool are_one = RequireOne(left, node.children[0]->span);
  are_one = RequireOne(right, node.children[1]->span) && are_one;
  std::string_view sign = SignOf(code);
  OperatorEntry const* entry = nullptr;
  if (!left.type->IsTuple() && !right.type->IsTuple()) {
    entry = swaps ? FindOperator(code, *right.type->entry, *left.type->entry, swaps)
                  : FindOperator(code, *left.type->entry, *right.type->entry, swaps);
  }
  if (entry == nullptr) {
    ReportOperands(node, sign, left, right);
    return {};
  }
  StaticType const* type = types_.Of(*entry->result);
  if (!IsUsable(*entry->result, node.span, sign) || !are_one) return {nullptr, type};
  bool is_constant =
      entry->depends_only_on_parameters && left.plan->is_constant && right.plan->is_constant;
  KeepUnless(is_constant, left.plan);
  KeepUnless(is_constant, right.plan);
  return Finish(std::make_unique<OperatorPlan>(*entry, std::string(sign), std::move(left.plan),
                                               std::move(right.plan), swaps, layout_),
                type, node.span, false, is_constant);
}

Compiler::Typed Compiler::CompileArithmetic(SyntaxNode const& node) {
  return CompileOperator(node, node.operator_code, false);
}

Compiler::Typed Compiler::CompileCompare(SyntaxNode const& node) {
  Typed answer = CompileOperator(node, node.comparison.operator_code, node.comparison.swaps);
  if (answer.type == nullptr) return {nullptr, types_.Of(vocabulary_.Boolean())};
  if (!RequireBoolean(answer, node.span) || !node.comparison.negates) return answer;
  auto plan = std::make_unique<NotPlan>();
  plan->children.push_back(std::move(answer.plan));
  return FinishComposite(std::move(plan), answer.type, node.span, false);
}

Compiler::Typed Compiler::CompileNegate(SyntaxNode const& node) {
  Typed operand = Compile(*node.children[0]);
  TypeEntry const* entry = RequireObject(operand, node.children[0]->span);
  if (entry == nullptr || !RequireOne(operand, node.children[0]->span)) {
    return {nullptr, operand.type};
  }
  if (entry == &vocabulary_.Integer()) {
    auto plan = std::make_unique<NegatePlan>();
    plan->children.push_back(std::move(operand.plan));
    return FinishComposite(std::move(plan), operand.type, node.span, false);
  }
  OperatorEntry const* multiply =
      vocabulary_.FindOperator(kOperatorMultiply, *entry, vocabulary_.Integer());
  if (multiply == nullptr || multiply->result != entry) {
    diagnostics_.Report("operator-mismatch", node.span,
                        operand.type->NameWithArticle() + " has no negative");
    return {};
  }
  Typed minus_one = Finish(std::make_unique<IntegerPlan>(-1), types_.Of(vocabulary_.Integer()),
                           node.span, false, true);
  bool is_constant = multiply->depends_only_on_parameters && operand.plan->is_constant;
  return Finish(std::make_unique<OperatorPlan>(*multiply, "-", std::move(operand.plan),
                                               std::move(minus_one.plan), false, layout_),
                operand.type, node.span, false, is_constant);
}

Compiler::Typed Compiler::CompileCast(SyntaxNode const& node) {
  Typed source = Compile(*node.children[0]);
  TypeEntry const* entry = RequireObject(source, node.children[0]->span);
  if (entry == nullptr) return {};
  CastEntry const* cast = vocabulary_.FindCast(*entry, node.text);
  if (cast == nullptr) return ReportCast(node, *entry);
  StaticType const* type = types_.Of(*cast->result);
  if (!IsUsable(*cast->result, node.span, node.text) || !source) return {nullptr, type};
  bool is_many = source.plan->is_many;
  bool is_constant = cast->depends_only_on_parameters && source.plan->is_constant;
  KeepUnless(is_constant, source.plan);
  return Finish(std::make_unique<CastPlan>(*cast, std::move(source.plan), layout_), type, node.span,
                is_many, is_constant);
}

Compiler::Typed Compiler::ReportCast(SyntaxNode const& node, TypeEntry const& type) {
  NearestName nearest(node.text);
  for (CastEntry const& cast : vocabulary_.Casts()) {
    if (vocabulary_.FindCast(type, cast.name) == &cast) nearest.Offer(cast.name);
  }
  std::string casts = finder_.DescribeCasts(type);
  std::string name = types_.Of(type)->NameWithArticle();
  std::vector<std::string> notes;
  if (!casts.empty()) notes.push_back(name + " can be taken as: " + casts);
  diagnostics_.Report("unknown-cast", node.span, name + " cannot be taken as \"" + node.text + '"',
                      nearest.Found(), std::move(notes));
  TypeEntry const* meant = vocabulary_.FindType(node.text);
  return {nullptr, meant != nullptr ? types_.Of(*meant) : nullptr};
}

}  // namespace gatotu
