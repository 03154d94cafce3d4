// Plans of what reaches into the vocabulary: properties, casts, operators, and the count of one.
#pragma once

#include "evaluator/plan.h"

namespace gatotu {

// A property, plain or iterated, of an object or of the world.
class PropertyPlan : public Plan {
 public:
  PropertyPlan(PropertyEntry const& property, FrameLayout& layout)
      : property_(property),
        value_slot_(layout.Reserve(property.result->size)),
        state_slot_(property.is_iterated ? layout.Reserve(property.record->state_size) : 0) {}

  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override;
  void VisitChildren(ChildVisitor visit) const override;

  PlanPointer parameter;
  PlanPointer object;
  // An object for which there is no such thing contributes nothing.
  bool absorbs_absence = false;

 private:
  Flow ProduceOf(Run& run, void const* parameter_value, Sink sink) const;
  Flow Get(Run& run, void const* parameter_value, void const* object_value, Sink sink) const;
  Flow Iterate(Run& run, void const* parameter_value, void const* object_value, Sink sink) const;
  Flow IterateItems(Run& run, void const* parameter_value, void const* object_value, void* state,
                    Sink sink) const;
  Flow EndWithout(Run& run, std::size_t evidence_begin) const;

  PropertyEntry const& property_;
  std::size_t value_slot_;
  std::size_t state_slot_;
};

// Exactly one of the values of a plan of many.
class SinglePlan : public Plan {
 public:
  SinglePlan(PlanPointer source, std::string plural)
      : source_(std::move(source)), plural_(std::move(plural)) {}

  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "exactly one"; }
  void VisitChildren(ChildVisitor visit) const override { visit(*source_); }

 private:
  PlanPointer source_;
  std::string plural_;
};

class CastPlan : public Plan {
 public:
  CastPlan(CastEntry const& cast, PlanPointer source, FrameLayout& layout)
      : cast_(cast), source_(std::move(source)), slot_(layout.Reserve(cast.result->size)) {}

  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "as " + cast_.name; }
  void VisitChildren(ChildVisitor visit) const override { visit(*source_); }

 private:
  Flow Apply(Run& run, void const* source, Sink sink) const;

  CastEntry const& cast_;
  PlanPointer source_;
  std::size_t slot_;
};

// A registered operator on one left and one right value, evaluated in this order; `swaps` hands
// them over the other way round.
class OperatorPlan : public Plan {
 public:
  OperatorPlan(OperatorEntry const& entry, std::string sign, PlanPointer left, PlanPointer right,
               bool swaps, FrameLayout& layout)
      : entry_(entry),
        sign_(std::move(sign)),
        left_(std::move(left)),
        right_(std::move(right)),
        swaps_(swaps),
        slot_(layout.Reserve(entry.result->size)) {}

  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override {
    return "operator " + sign_ + (swaps_ ? " (sides changed)" : "");
  }
  void VisitChildren(ChildVisitor visit) const override;

 private:
  Flow Apply(Run& run, void const* left, void const* right, Sink sink) const;

  OperatorEntry const& entry_;
  std::string sign_;
  PlanPointer left_;
  PlanPointer right_;
  bool swaps_;
  std::size_t slot_;
};

}  // namespace gatotu
