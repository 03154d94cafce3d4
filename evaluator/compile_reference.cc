#include "evaluator/expression_compiler.h"
#include "evaluator/reference_plans.h"

namespace gatotu {

Compiler::Typed Compiler::CompileIt(SyntaxNode const& node) {
  if (binders_.empty()) {
    diagnostics_.Report("unbound-it", node.span,
                        "\"it\" has a meaning only within \"whose (...)\" or \"(...) of\"");
    return {};
  }
  Binder const& binder = binders_.back();
  if (binder.type == nullptr) return {};
  return Finish(std::make_unique<ItPlan>(binder.slot), binder.type, node.span, false, false);
}

Compiler::Typed Compiler::CompileBound(SyntaxNode const& node, StaticType const* type,
                                       std::size_t slot) {
  binders_.push_back({type, slot});
  Typed typed = Compile(node);
  binders_.pop_back();
  return typed;
}

Compiler::Typed Compiler::Filter(Typed source, SyntaxNode const& node) {
  std::size_t slot = layout_.Reserve(sizeof(void*));
  Typed condition = CompileBound(*node.condition, source.type, slot);
  if (!RequireBoolean(condition, node.condition->span) || !source) return {nullptr, source.type};
  auto plan = std::make_unique<FilterPlan>(slot);
  bool is_many = source.plan->is_many;
  plan->children.push_back(std::move(source.plan));
  plan->children.push_back(std::move(condition.plan));
  Typed filter = FinishComposite(std::move(plan), source.type, node.span, true);
  return is_many ? std::move(filter) : Single(std::move(filter), node.span, {});
}

Compiler::Typed Compiler::Single(Typed source, Span span, std::string plural) {
  bool is_constant = source.plan->is_constant;
  return Finish(std::make_unique<SinglePlan>(std::move(source.plan), std::move(plural)),
                source.type, span, false, is_constant);
}

Compiler::Typed Compiler::CompileMap(SyntaxNode const& node) {
  Typed source = Compile(*node.object);
  std::size_t slot = layout_.Reserve(sizeof(void*));
  Typed body = CompileBound(*node.children[0], source.type, slot);
  if (!source || !body) return {nullptr, body.type};
  bool is_many = source.plan->is_many || body.plan->is_many;
  auto plan = std::make_unique<MapPlan>(slot);
  plan->children.push_back(std::move(source.plan));
  plan->children.push_back(std::move(body.plan));
  return FinishComposite(std::move(plan), body.type, node.span, is_many);
}

Compiler::Typed Compiler::CompileProperty(SyntaxNode const& node) {
  // Left to right: the parameter is looked at, and evaluated, before the object.
  Typed parameter;
  TypeEntry const* parameter_type = nullptr;
  bool is_known = true;
  if (node.parameter != nullptr) {
    parameter = Compile(*node.parameter);
    parameter_type = RequireObject(parameter, node.parameter->span);
    is_known = RequireOne(parameter, node.parameter->span) && parameter_type != nullptr;
  }
  Typed object;
  TypeEntry const* object_type = &vocabulary_.World();
  if (node.object != nullptr) {
    enclosing_[node.object] = &node;
    object = Compile(*node.object);
    object_type = RequireObject(object, node.object->span);
  }
  FoundProperty found = Resolve(node, is_known, parameter_type, object_type);
  if (found.property == nullptr) return SkipCondition(node, nullptr);
  StaticType const* result = types_.Of(*found.property->result);
  bool is_complete = diagnostics_.IsEmpty() &&
                     IsUsable(*found.property->result, node.span, node.text) &&
                     (node.object == nullptr || object) && is_known;
  if (!is_complete) return SkipCondition(node, result);
  return BuildProperty(node, found, std::move(parameter.plan), std::move(object.plan), result);
}

FoundProperty Compiler::Resolve(SyntaxNode const& node, bool is_known, TypeEntry const* parameter,
                                TypeEntry const* object) {
  if (object == nullptr) {
    if (node.kind == SyntaxKind::kUnknown) finder_.ReportUnknown(node.text, node.span);
    return {};
  }
  if (!is_known && node.kind != SyntaxKind::kUnknown) return {};
  FoundProperty found = finder_.Find(node.text, parameter, *object);
  if (node.kind != SyntaxKind::kUnknown && found.property != nullptr) return found;
  return finder_.Report(node.text, node.span, parameter, *object);
}

Compiler::Typed Compiler::SkipCondition(SyntaxNode const& node, StaticType const* type) {
  if (node.condition != nullptr) {
    Typed condition = CompileBound(*node.condition, type, 0);
    RequireBoolean(condition, node.condition->span);
  }
  return {nullptr, type};
}

Compiler::Typed Compiler::BuildProperty(SyntaxNode const& node, FoundProperty found,
                                        PlanPointer parameter, PlanPointer object,
                                        StaticType const* result) {
  PropertyEntry const& property = *found.property;
  bool may_be_many = property.is_iterated || (object != nullptr && object->is_many);
  bool is_one_by_itself = !found.is_plural && !may_be_many && node.condition == nullptr;
  bool is_constant = property.depends_only_on_parameters && !property.is_iterated &&
                     !found.is_plural && (parameter == nullptr || parameter->is_constant) &&
                     (object == nullptr || object->is_constant);
  KeepUnless(is_constant, parameter);
  KeepUnless(is_constant, object);
  auto plan = std::make_unique<PropertyPlan>(property, layout_);
  plan->parameter = std::move(parameter);
  plan->object = std::move(object);
  plan->absorbs_absence = !is_one_by_itself;
  Typed typed = Finish(std::move(plan), result, node.span, !is_one_by_itself, is_constant);
  if (node.condition != nullptr) typed = FilterProperty(std::move(typed), node, found);
  if (is_one_by_itself || found.is_plural || !typed) return typed;
  return Single(std::move(typed), node.span, property.plural);
}

Compiler::Typed Compiler::FilterProperty(Typed source, SyntaxNode const& node,
                                         FoundProperty found) {
  StaticType const* type = source.type;
  Typed filtered = Filter(std::move(source), node);
  if (!filtered && !found.is_plural) ReportMisplacedCondition(node);
  return {std::move(filtered.plan), type};
}

void Compiler::ReportMisplacedCondition(SyntaxNode const& node) {
  for (SyntaxNode const* outer = Enclosing(node); outer != nullptr; outer = Enclosing(*outer)) {
    auto const* uses = vocabulary_.FindPhrase(outer->text);
    if (uses == nullptr || outer->condition != nullptr) continue;
    for (PhraseUse const& use : *uses) {
      if (!use.is_plural || !ConditionFits(*node.condition, *use.property->result)) continue;
      diagnostics_.Report("misplaced-whose", node.span,
                          "\"whose\" filters what stands just before it, here \"" + node.text + '"',
                          outer->text + " whose (...) of " + node.text);
      return;
    }
  }
}

bool Compiler::ConditionFits(SyntaxNode const& condition, TypeEntry const& type) {
  Diagnostics unheard{{}};
  Compiler trial(vocabulary_, types_, layout_, unheard);
  Typed typed = trial.CompileBound(condition, types_.Of(type), layout_.Reserve(sizeof(void*)));
  return trial.RequireBoolean(typed, condition.span) && unheard.IsEmpty();
}

SyntaxNode const* Compiler::Enclosing(SyntaxNode const& node) const {
  auto found = enclosing_.find(&node);
  return found != enclosing_.end() ? found->second : nullptr;
}

}  // namespace gatotu
