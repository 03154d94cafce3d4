#include "evaluator/expression_compiler.h"

namespace gatotu {

Compiler::Typed Compiler::CompileItem(SyntaxNode const& node) {
  Typed source = Compile(*node.object);
  if (source.type == nullptr) return {};
  if (!source.type->IsTuple()) {
    diagnostics_.Report("not-a-tuple", node.span,
                        "\"item\" takes a tuple, not " + source.type->NameWithArticle());
    return {};
  }
  auto index = static_cast<std::size_t>(node.integer);
  if (node.integer < 0 || index >= source.type->members.size()) {
    diagnostics_.Report(
        "no-such-item", node.span,
        "this tuple has the items 0 to " + std::to_string(source.type->members.size() - 1));
    return {};
  }
  StaticType const* type = source.type->members[index];
  if (!source) return {nullptr, type};
  auto plan = std::make_unique<ItemPlan>(index);
  bool is_many = source.plan->is_many;
  plan->children.push_back(std::move(source.plan));
  return FinishComposite(std::move(plan), type, node.span, is_many);
}

Compiler::Typed Compiler::CompileAlternatives(SyntaxNode const& node) {
  if (node.children.size() == 1) return Compile(*node.children[0]);
  bool is_collection = node.kind == SyntaxKind::kCollection;
  std::vector<PlanPointer> plans;
  StaticType const* type = nullptr;
  bool is_many = is_collection;
  for (SyntaxNode const* child : node.children) {
    Typed typed = Compile(*child);
    if (!MergeType(type, typed, child->span) || !typed) continue;
    is_many = is_many || typed.plan->is_many;
    plans.push_back(std::move(typed.plan));
  }
  if (plans.size() != node.children.size()) return {nullptr, type};
  std::unique_ptr<CompositePlan> plan;
  if (is_collection) {
    plan = std::make_unique<CollectionPlan>();
  } else {
    plan = std::make_unique<FallbackPlan>();
  }
  plan->children = std::move(plans);
  return FinishComposite(std::move(plan), type, node.span, is_many);
}

bool Compiler::MergeType(StaticType const*& type, Typed const& typed, Span span) {
  if (typed.type == nullptr) return false;
  StaticType const* common = type == nullptr ? typed.type : CommonType(type, typed.type, types_);
  if (common == nullptr) {
    diagnostics_.Report("type-mismatch", span,
                        "this is " + typed.type->NameWithArticle() + ", and what stands before " +
                            "it " + type->NameWithArticle());
    return false;
  }
  type = common;
  return true;
}

Compiler::Typed Compiler::CompileTuple(SyntaxNode const& node) {
  auto plan = std::make_unique<TuplePlan>(layout_.Reserve(sizeof(void*) * node.children.size()));
  std::vector<StaticType const*> members;
  for (SyntaxNode const* child : node.children) {
    Typed typed = Compile(*child);
    members.push_back(typed.type);
    if (RequireOne(typed, child->span)) plan->children.push_back(std::move(typed.plan));
  }
  for (StaticType const* member : members) {
    if (member == nullptr) return {};
  }
  StaticType const* type = types_.OfTuple(std::move(members));
  if (plan->children.size() != node.children.size()) return {nullptr, type};
  return FinishComposite(std::move(plan), type, node.span, false);
}

Compiler::Typed Compiler::CompileChoice(SyntaxNode const& node) {
  auto plan = std::make_unique<ChoicePlan>();
  Typed condition = Compile(*node.children[0]);
  bool is_complete = RequireBoolean(condition, node.children[0]->span);
  plan->children.push_back(std::move(condition.plan));
  StaticType const* type = nullptr;
  bool is_many = false;
  for (std::size_t branch : {1, 2}) {
    Typed typed = Compile(*node.children[branch]);
    is_complete = MergeType(type, typed, node.children[branch]->span) && typed && is_complete;
    is_many = is_many || (typed && typed.plan->is_many);
    plan->children.push_back(std::move(typed.plan));
  }
  if (!is_complete) return {nullptr, type};
  return FinishComposite(std::move(plan), type, node.span, is_many);
}

Compiler::Typed Compiler::FinishBoolean(std::unique_ptr<CompositePlan> plan,
                                        SyntaxNode const& node) {
  StaticType const* type = types_.Of(vocabulary_.Boolean());
  if (plan->children.size() != node.children.size()) return {nullptr, type};
  return FinishComposite(std::move(plan), type, node.span, false);
}

void Compiler::AddBooleanOperand(CompositePlan& plan, SyntaxNode const& node) {
  Typed typed = Compile(node);
  if (RequireBoolean(typed, node.span)) plan.children.push_back(std::move(typed.plan));
}

Compiler::Typed Compiler::CompileJunction(SyntaxNode const& node, bool neutral) {
  auto plan = std::make_unique<JunctionPlan>(neutral);
  for (SyntaxNode const* child : node.children) AddBooleanOperand(*plan, *child);
  return FinishBoolean(std::move(plan), node);
}

Compiler::Typed Compiler::CompileNot(SyntaxNode const& node) {
  auto plan = std::make_unique<NotPlan>();
  AddBooleanOperand(*plan, *node.children[0]);
  return FinishBoolean(std::move(plan), node);
}

Compiler::Typed Compiler::CompileExists(SyntaxNode const& node) {
  auto plan = std::make_unique<ExistsPlan>();
  Typed typed = Compile(*node.children[0]);
  if (typed) plan->children.push_back(std::move(typed.plan));
  return FinishBoolean(std::move(plan), node);
}

}  // namespace gatotu
