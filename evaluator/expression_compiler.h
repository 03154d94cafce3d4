// The pass behind `CompileSyntax`, one function a kind of node. Its functions stand in one source
// a concern: references, grammar, operators, aggregates.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "evaluator/compiler.h"
#include "evaluator/grammar_plans.h"
#include "evaluator/property_finder.h"

namespace gatotu {

class Compiler {
 public:
  Compiler(VocabularyIndex& vocabulary, StaticTypes& types, FrameLayout& layout,
           Diagnostics& diagnostics)
      : vocabulary_(vocabulary),
        types_(types),
        layout_(layout),
        diagnostics_(diagnostics),
        finder_(vocabulary, diagnostics) {}
  PlanPointer Run(SyntaxNode const& root);

 private:
  // What became of a node. Without a plan something is wrong with it; its type may be known even
  // so.
  struct Typed {
    PlanPointer plan;
    StaticType const* type = nullptr;

    explicit operator bool() const { return plan != nullptr; }
  };

  struct Binder {
    StaticType const* type;  // null when it is not known
    std::size_t slot;
  };
  Typed Compile(SyntaxNode const& node);

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
  PlanPointer Keep(PlanPointer plan);
  // Children of a plan that is itself constant are kept with it.
  void KeepUnless(bool is_constant, PlanPointer& child);
  template <class P>
  Typed FinishComposite(std::unique_ptr<P> plan, StaticType const* type, Span span, bool is_many) {
    bool is_constant = true;
    for (PlanPointer const& child : plan->children) is_constant = is_constant && child->is_constant;
    for (PlanPointer& child : plan->children) KeepUnless(is_constant, child);
    return Finish(std::move(plan), type, span, is_many, is_constant);
  }
  bool IsUsable(TypeEntry const& type, Span span, std::string_view phrase);

  // ---- Requirements on operands
  bool RequireOne(Typed const& typed, Span span);
  bool RequireBoolean(Typed const& typed, Span span);
  TypeEntry const* RequireObject(Typed const& typed, Span span);

  // ---- Binding `it`
  Typed CompileIt(SyntaxNode const& node);
  Typed CompileBound(SyntaxNode const& node, StaticType const* type, std::size_t slot);
  // source whose (node.condition)
  Typed Filter(Typed source, SyntaxNode const& node);
  Typed Single(Typed source, Span span, std::string plural);
  Typed CompileMap(SyntaxNode const& node);

  // ---- Properties
  Typed CompileProperty(SyntaxNode const& node);
  FoundProperty Resolve(SyntaxNode const& node, bool is_known, TypeEntry const* parameter,
                        TypeEntry const* object);
  // Something is wrong already; what stands in the condition may be wrong as well.
  Typed SkipCondition(SyntaxNode const& node, StaticType const* type);
  Typed BuildProperty(SyntaxNode const& node, FoundProperty found, PlanPointer parameter,
                      PlanPointer object, StaticType const* result);
  Typed FilterProperty(Typed source, SyntaxNode const& node, FoundProperty found);
  // `names of files of folder "/etc" whose (size of it = 0)`: the condition was meant for the
  // files.
  void ReportMisplacedCondition(SyntaxNode const& node);
  bool ConditionFits(SyntaxNode const& condition, TypeEntry const& type);
  SyntaxNode const* Enclosing(SyntaxNode const& node) const;

  // ---- The language's own
  Typed CompileItem(SyntaxNode const& node);
  // A collection or a fallback: children of one type.
  Typed CompileAlternatives(SyntaxNode const& node);
  // Widens `type` to one that the value has as well.
  bool MergeType(StaticType const*& type, Typed const& typed, Span span);
  Typed CompileTuple(SyntaxNode const& node);
  Typed CompileChoice(SyntaxNode const& node);
  Typed FinishBoolean(std::unique_ptr<CompositePlan> plan, SyntaxNode const& node);
  void AddBooleanOperand(CompositePlan& plan, SyntaxNode const& node);
  Typed CompileJunction(SyntaxNode const& node, bool neutral);
  Typed CompileNot(SyntaxNode const& node);
  Typed CompileExists(SyntaxNode const& node);

  // ---- Operators
  // `swaps` is set when only the operator with its sides changed is registered, for equality.
  OperatorEntry const* FindOperator(int code, TypeEntry const& left, TypeEntry const& right,
                                    bool& swaps);
  void ReportOperands(SyntaxNode const& node, std::string_view sign, Typed const& left,
                      Typed const& right);
  Typed CompileOperator(SyntaxNode const& node, int code, bool swaps);
  Typed CompileArithmetic(SyntaxNode const& node);
  Typed CompileCompare(SyntaxNode const& node);
  // Of an integer the language's own; of what can be multiplied by an integer, that by -1.
  Typed CompileNegate(SyntaxNode const& node);
  Typed CompileCast(SyntaxNode const& node);
  Typed ReportCast(SyntaxNode const& node, TypeEntry const& type);

  // ---- Aggregates
  Typed CompileAggregate(SyntaxNode const& node);
  Typed FinishAggregate(std::unique_ptr<CompositePlan> plan, Typed source, StaticType const* type,
                        SyntaxNode const& node);
  bool RequireCopyable(Typed const& source, SyntaxNode const& node);
  Typed CompileCopyingAggregate(SyntaxNode const& node, Typed source);
  std::unique_ptr<CompositePlan> MakeSum(TypeEntry const& entry);
  std::unique_ptr<CompositePlan> MakeOrdered(Aggregate aggregate, TypeEntry const& entry);

  VocabularyIndex& vocabulary_;
  StaticTypes& types_;
  FrameLayout& layout_;
  Diagnostics& diagnostics_;
  PropertyFinder finder_;
  std::vector<Binder> binders_;
  // Which property a node is the object of.
  std::map<SyntaxNode const*, SyntaxNode const*> enclosing_;
};

}  // namespace gatotu
