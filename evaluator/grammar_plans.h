// Plans of what the language itself means: literals, `it`, logic, choices, tuples, filters.
#pragma once

#include <cstdint>

#include "evaluator/plan.h"

namespace gatotu {

class StringPlan : public Plan {
 public:
  explicit StringPlan(std::string bytes)
      : bytes_(std::move(bytes)),
        value_{reinterpret_cast<unsigned char const*>(bytes_.data()), bytes_.size()} {}
  Flow Produce(Run&, Sink sink) const override { return sink(&value_); }
  std::string Label() const override { return '"' + bytes_ + '"'; }

 private:
  std::string bytes_;
  inspector_string value_;
};

class IntegerPlan : public Plan {
 public:
  explicit IntegerPlan(std::int64_t value) : value_(value) {}
  Flow Produce(Run&, Sink sink) const override { return sink(&value_); }
  std::string Label() const override { return std::to_string(value_); }

 private:
  std::int64_t value_;
};

class BooleanPlan : public Plan {
 public:
  explicit BooleanPlan(bool value) : value_(value) {}
  Flow Produce(Run&, Sink sink) const override { return sink(&value_); }
  std::string Label() const override { return value_ ? "true" : "false"; }

 private:
  bool value_;
};

// What a filter or a map binds: the place in the frame that holds the address of the value.
class ItPlan : public Plan {
 public:
  explicit ItPlan(std::size_t slot) : slot_(slot) {}
  Flow Produce(Run& run, Sink sink) const override {
    return sink(*static_cast<void const**>(run.Slot(slot_)));
  }
  std::string Label() const override { return "it"; }

 private:
  std::size_t slot_;
};

// A plan made of others, in the order of their evaluation.
class CompositePlan : public Plan {
 public:
  void VisitChildren(ChildVisitor visit) const override {
    for (PlanPointer const& child : children) visit(*child);
  }
  std::vector<PlanPointer> children;
};

// The values of children[0] for which children[1] holds; where it has no such object, it does not.
class FilterPlan : public CompositePlan {
 public:
  explicit FilterPlan(std::size_t it_slot) : it_slot_(it_slot) {}
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "whose"; }

 private:
  std::size_t it_slot_;
};

// children[1], the body, for each value of children[0].
class MapPlan : public CompositePlan {
 public:
  explicit MapPlan(std::size_t it_slot) : it_slot_(it_slot) {}
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "for each"; }

 private:
  std::size_t it_slot_;
};

class CollectionPlan : public CompositePlan {
 public:
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "collection"; }
};

class TuplePlan : public CompositePlan {
 public:
  explicit TuplePlan(std::size_t slot) : slot_(slot) {}
  Flow Produce(Run& run, Sink sink) const override { return ProduceFrom(run, 0, sink); }
  std::string Label() const override { return "tuple"; }

 private:
  Flow ProduceFrom(Run& run, std::size_t index, Sink sink) const;
  std::size_t slot_;
};

class ItemPlan : public CompositePlan {
 public:
  explicit ItemPlan(std::size_t index) : index_(index) {}
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "item " + std::to_string(index_); }

 private:
  std::size_t index_;
};

// if children[0] then children[1] else children[2].
class ChoicePlan : public CompositePlan {
 public:
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "if"; }
};

// The first child that yields anything.
class FallbackPlan : public CompositePlan {
 public:
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "|"; }
};

// `and` and `or`: goes on while the answer is `neutral`.
class JunctionPlan : public CompositePlan {
 public:
  explicit JunctionPlan(bool neutral) : neutral_(neutral) {}
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return neutral_ ? "and" : "or"; }

 private:
  bool neutral_;
};

class NotPlan : public CompositePlan {
 public:
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "not"; }
};

class ExistsPlan : public CompositePlan {
 public:
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "exists"; }
};

// Of an integer.
class NegatePlan : public CompositePlan {
 public:
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "-"; }
};

}  // namespace gatotu
