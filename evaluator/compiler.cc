#include "evaluator/compiler.h"

#include <map>
#include <string>
#include <utility>

#include "evaluator/aggregate_plans.h"
#include "evaluator/grammar_plans.h"
#include "evaluator/kept_plan.h"
#include "evaluator/operator_signs.h"
#include "evaluator/property_finder.h"
#include "evaluator/reference_plans.h"
#include "evaluator/spelling.h"

namespace gatotu {
namespace {

// What became of a node. Without a plan something is wrong with it; its type may be known even so.
struct Typed {
  PlanPointer plan;
  StaticType const* type = nullptr;

  explicit operator bool() const { return plan != nullptr; }
};

class Compiler {
 public:
  Compiler(VocabularyIndex const& vocabulary, StaticTypes& types, FrameLayout& layout,
           Diagnostics& diagnostics)
      : vocabulary_(vocabulary),
        types_(types),
        layout_(layout),
        diagnostics_(diagnostics),
        finder_(vocabulary, diagnostics) {}

  PlanPointer Run(SyntaxNode const& root) {
    Typed typed = Compile(root);
    return diagnostics_.IsEmpty() && typed ? Keep(std::move(typed.plan)) : nullptr;
  }

 private:
  struct Binder {
    StaticType const* type;  // null when it is not known
    std::size_t slot;
  };

  Typed Compile(SyntaxNode const& node) {
    switch (node.kind) {
      case SyntaxKind::kString:
        return Literal(std::make_unique<StringPlan>(node.text), vocabulary_.String(), node);
      case SyntaxKind::kInteger:
        return Literal(std::make_unique<IntegerPlan>(node.integer), vocabulary_.Integer(), node);
      case SyntaxKind::kBoolean:
        return Literal(std::make_unique<BooleanPlan>(node.integer != 0), vocabulary_.Boolean(),
                       node);
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

  // ---- Building plans

  template <class P>
  Typed Finish(std::unique_ptr<P> plan, StaticType const* type, Span span, bool is_many,
               bool is_constant) {
    plan->type = type;
    plan->span = span;
    plan->is_many = is_many;
    plan->is_constant = is_constant;
    return {std::move(plan), type};
  }

  template <class P>
  Typed Literal(std::unique_ptr<P> plan, TypeEntry const& type, SyntaxNode const& node) {
    return Finish(std::move(plan), types_.Of(type), node.span, false, true);
  }

  // A part that is constant but stands in what is not, or at the root: its result may be kept.
  PlanPointer Keep(PlanPointer plan) {
    bool is_literal = dynamic_cast<StringPlan*>(plan.get()) != nullptr ||
                      dynamic_cast<IntegerPlan*>(plan.get()) != nullptr ||
                      dynamic_cast<BooleanPlan*>(plan.get()) != nullptr;
    bool can_be_kept = plan->is_constant && !plan->is_many && !is_literal &&
                       !plan->type->IsTuple() && ValueOrder::IsBuiltIn(*plan->type->entry);
    if (!can_be_kept) return plan;
    StaticType const* type = plan->type;
    Span span = plan->span;
    return Finish(std::make_unique<KeptPlan>(std::move(plan)), type, span, false, true).plan;
  }

  // Children of a plan that is itself constant are kept with it.
  void KeepUnless(bool is_constant, PlanPointer& child) {
    if (!is_constant && child != nullptr) child = Keep(std::move(child));
  }

  template <class P>
  Typed FinishComposite(std::unique_ptr<P> plan, StaticType const* type, Span span, bool is_many) {
    bool is_constant = true;
    for (PlanPointer const& child : plan->children) is_constant = is_constant && child->is_constant;
    for (PlanPointer& child : plan->children) KeepUnless(is_constant, child);
    return Finish(std::move(plan), type, span, is_many, is_constant);
  }

  bool IsUsable(TypeEntry const& type, Span span, std::string_view phrase) {
    if (type.is_registered) return true;
    diagnostics_.Report("unregistered-type", span,
                        "\"" + std::string(phrase) + "\" gives a type \"" + type.name +
                            "\" that nothing has registered");
    return false;
  }

  // ---- Requirements on operands

  bool RequireOne(Typed const& typed, Span span) {
    if (!typed || !typed.plan->is_many) return typed.plan != nullptr;
    diagnostics_.Report("plural-operand", span, "exactly one value is needed here, not any number");
    return false;
  }

  bool RequireBoolean(Typed const& typed, Span span) {
    if (typed.type == nullptr) return false;
    if (typed.type->IsTuple() || typed.type->entry != &vocabulary_.Boolean()) {
      diagnostics_.Report("not-boolean", span,
                          "a boolean is needed here, not " + typed.type->NameWithArticle());
      return false;
    }
    return RequireOne(typed, span);
  }

  TypeEntry const* RequireObject(Typed const& typed, Span span) {
    if (typed.type == nullptr) return nullptr;
    if (!typed.type->IsTuple()) return typed.type->entry;
    diagnostics_.Report("tuple-operand", span,
                        "this is a tuple; its members are asked for by \"item 0 of\" and so on");
    return nullptr;
  }

  // ---- Binding `it`

  Typed CompileIt(SyntaxNode const& node) {
    if (binders_.empty()) {
      diagnostics_.Report("unbound-it", node.span,
                          "\"it\" has a meaning only within \"whose (...)\" or \"(...) of\"");
      return {};
    }
    Binder const& binder = binders_.back();
    if (binder.type == nullptr) return {};
    return Finish(std::make_unique<ItPlan>(binder.slot), binder.type, node.span, false, false);
  }

  Typed CompileBound(SyntaxNode const& node, StaticType const* type, std::size_t slot) {
    binders_.push_back({type, slot});
    Typed typed = Compile(node);
    binders_.pop_back();
    return typed;
  }

  // source whose (node.condition)
  Typed Filter(Typed source, SyntaxNode const& node) {
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

  Typed Single(Typed source, Span span, std::string plural) {
    bool is_constant = source.plan->is_constant;
    return Finish(std::make_unique<SinglePlan>(std::move(source.plan), std::move(plural)),
                  source.type, span, false, is_constant);
  }

  Typed CompileMap(SyntaxNode const& node) {
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

  // ---- Properties

  Typed CompileProperty(SyntaxNode const& node) {
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

  FoundProperty Resolve(SyntaxNode const& node, bool is_known, TypeEntry const* parameter,
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

  // Something is wrong already; what stands in the condition may be wrong as well.
  Typed SkipCondition(SyntaxNode const& node, StaticType const* type) {
    if (node.condition != nullptr) {
      Typed condition = CompileBound(*node.condition, type, 0);
      RequireBoolean(condition, node.condition->span);
    }
    return {nullptr, type};
  }

  Typed BuildProperty(SyntaxNode const& node, FoundProperty found, PlanPointer parameter,
                      PlanPointer object, StaticType const* result) {
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

  Typed FilterProperty(Typed source, SyntaxNode const& node, FoundProperty found) {
    StaticType const* type = source.type;
    Typed filtered = Filter(std::move(source), node);
    if (!filtered && !found.is_plural) ReportMisplacedCondition(node);
    return {std::move(filtered.plan), type};
  }

  // `names of files of folder "/etc" whose (size of it = 0)`: the condition was meant for the
  // files.
  void ReportMisplacedCondition(SyntaxNode const& node) {
    for (SyntaxNode const* outer = Enclosing(node); outer != nullptr; outer = Enclosing(*outer)) {
      auto const* uses = vocabulary_.FindPhrase(outer->text);
      if (uses == nullptr || outer->condition != nullptr) continue;
      for (PhraseUse const& use : *uses) {
        if (!use.is_plural) continue;
        diagnostics_.Report(
            "misplaced-whose", node.span,
            "\"whose\" filters what stands just before it, here \"" + node.text + '"',
            outer->text + " whose (...) of " + node.text);
        return;
      }
    }
  }

  SyntaxNode const* Enclosing(SyntaxNode const& node) const {
    auto found = enclosing_.find(&node);
    return found != enclosing_.end() ? found->second : nullptr;
  }

  // ---- The language's own

  Typed CompileItem(SyntaxNode const& node) {
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

  // A collection or a fallback: children of one type.
  Typed CompileAlternatives(SyntaxNode const& node) {
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

  // Widens `type` to one that the value has as well.
  bool MergeType(StaticType const*& type, Typed const& typed, Span span) {
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

  Typed CompileTuple(SyntaxNode const& node) {
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

  Typed CompileChoice(SyntaxNode const& node) {
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

  Typed FinishBoolean(std::unique_ptr<CompositePlan> plan, SyntaxNode const& node) {
    StaticType const* type = types_.Of(vocabulary_.Boolean());
    if (plan->children.size() != node.children.size()) return {nullptr, type};
    return FinishComposite(std::move(plan), type, node.span, false);
  }

  void AddBooleanOperand(CompositePlan& plan, SyntaxNode const& node) {
    Typed typed = Compile(node);
    if (RequireBoolean(typed, node.span)) plan.children.push_back(std::move(typed.plan));
  }

  Typed CompileJunction(SyntaxNode const& node, bool neutral) {
    auto plan = std::make_unique<JunctionPlan>(neutral);
    for (SyntaxNode const* child : node.children) AddBooleanOperand(*plan, *child);
    return FinishBoolean(std::move(plan), node);
  }

  Typed CompileNot(SyntaxNode const& node) {
    auto plan = std::make_unique<NotPlan>();
    AddBooleanOperand(*plan, *node.children[0]);
    return FinishBoolean(std::move(plan), node);
  }

  Typed CompileExists(SyntaxNode const& node) {
    auto plan = std::make_unique<ExistsPlan>();
    Typed typed = Compile(*node.children[0]);
    if (typed) plan->children.push_back(std::move(typed.plan));
    return FinishBoolean(std::move(plan), node);
  }

  // ---- Operators

  // `swaps` is set when only the operator with its sides changed is registered, for equality.
  OperatorEntry const* FindOperator(int code, TypeEntry const& left, TypeEntry const& right,
                                    bool& swaps) {
    if (auto const* found = vocabulary_.FindOperator(code, left, right)) return found;
    if (code != kOperatorEqual) return nullptr;
    swaps = !swaps;
    return vocabulary_.FindOperator(code, right, left);
  }

  void ReportOperands(SyntaxNode const& node, std::string_view sign, Typed const& left,
                      Typed const& right) {
    diagnostics_.Report("operator-mismatch", node.span,
                        "\"" + std::string(sign) + "\" does not take " +
                            left.type->NameWithArticle() + " and " + right.type->NameWithArticle());
  }

  Typed CompileOperator(SyntaxNode const& node, int code, bool swaps) {
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

  Typed CompileArithmetic(SyntaxNode const& node) {
    return CompileOperator(node, node.operator_code, false);
  }

  Typed CompileCompare(SyntaxNode const& node) {
    Typed answer = CompileOperator(node, node.comparison.operator_code, node.comparison.swaps);
    if (answer.type == nullptr) return {nullptr, types_.Of(vocabulary_.Boolean())};
    if (!RequireBoolean(answer, node.span) || !node.comparison.negates) return answer;
    auto plan = std::make_unique<NotPlan>();
    plan->children.push_back(std::move(answer.plan));
    return FinishComposite(std::move(plan), answer.type, node.span, false);
  }

  // Of an integer the language's own; of what can be multiplied by an integer, that by -1.
  Typed CompileNegate(SyntaxNode const& node) {
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

  Typed CompileCast(SyntaxNode const& node) {
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
    return Finish(std::make_unique<CastPlan>(*cast, std::move(source.plan), layout_), type,
                  node.span, is_many, is_constant);
  }

  Typed ReportCast(SyntaxNode const& node, TypeEntry const& type) {
    NearestName nearest(node.text);
    for (CastEntry const& cast : vocabulary_.Casts()) {
      if (vocabulary_.FindCast(type, cast.name) == &cast) nearest.Offer(cast.name);
    }
    std::string casts = finder_.DescribeCasts(type);
    std::string name = types_.Of(type)->NameWithArticle();
    std::vector<std::string> notes;
    if (!casts.empty()) notes.push_back(name + " can be taken as: " + casts);
    diagnostics_.Report("unknown-cast", node.span,
                        name + " cannot be taken as \"" + node.text + '"', nearest.Found(),
                        std::move(notes));
    TypeEntry const* meant = vocabulary_.FindType(node.text);
    return {nullptr, meant != nullptr && meant->is_registered ? types_.Of(*meant) : nullptr};
  }

  // ---- Aggregates

  Typed CompileAggregate(SyntaxNode const& node) {
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

  Typed FinishAggregate(std::unique_ptr<CompositePlan> plan, Typed source, StaticType const* type,
                        SyntaxNode const& node) {
    plan->children.push_back(std::move(source.plan));
    bool is_many = node.aggregate == Aggregate::kUniqueValues;
    return FinishComposite(std::move(plan), type, node.span, is_many);
  }

  bool RequireCopyable(Typed const& source, SyntaxNode const& node) {
    if (!source.type->IsTuple() && source.type->entry->is_copyable) return true;
    diagnostics_.Report("not-copyable", node.span,
                        "\"" + std::string(NameOf(node.aggregate)) + "\" cannot hold " +
                            source.type->NameWithArticle() + "; ask for a property of it");
    return false;
  }

  Typed CompileCopyingAggregate(SyntaxNode const& node, Typed source) {
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
      diagnostics_.Report("aggregate-mismatch", node.span,
                          "\"" + std::string(NameOf(node.aggregate)) + "\" does not take " +
                              type->NameWithArticle());
      return {nullptr, type};
    }
    if (!source) return {nullptr, type};
    return FinishAggregate(std::move(plan), std::move(source), type, node);
  }

  std::unique_ptr<CompositePlan> MakeSum(TypeEntry const& entry) {
    if (entry.kind == ValueType::Kind::kInteger) return std::make_unique<IntegerSumPlan>();
    auto const* add = vocabulary_.FindOperator(kOperatorAdd, entry, entry);
    bool sums = add != nullptr && add->result == &entry;
    return sums ? std::make_unique<SumPlan>(*add, layout_) : nullptr;
  }

  std::unique_ptr<CompositePlan> MakeOrdered(Aggregate aggregate, TypeEntry const& entry) {
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

  VocabularyIndex const& vocabulary_;
  StaticTypes& types_;
  FrameLayout& layout_;
  Diagnostics& diagnostics_;
  PropertyFinder finder_;
  std::vector<Binder> binders_;
  // Which property a node is the object of.
  std::map<SyntaxNode const*, SyntaxNode const*> enclosing_;
};

}  // namespace

PlanPointer CompileSyntax(SyntaxNode const& root, VocabularyIndex const& vocabulary,
                          StaticTypes& types, FrameLayout& layout, Diagnostics& diagnostics) {
  return Compiler(vocabulary, types, layout, diagnostics).Run(root);
}

}  // namespace gatotu
