// Plans of the aggregates. Those that hold values beyond the consumer's turn copy them, so they
// take copyable types only.
#pragma once

#include "evaluator/grammar_plans.h"
#include "evaluator/reference_plans.h"

namespace gatotu {

// How values of one type are put in order: strings by their bytes, integers, booleans and hertz
// by themselves, others by their registered "<".
class ValueOrder {
 public:
  // Null `less` for the types that need none.
  ValueOrder(TypeEntry const& type, OperatorEntry const* less) : type_(type), less_(less) {}

  static bool IsBuiltIn(TypeEntry const& type);

  // False where the operator failed, which `run` then has recorded and `has_failed` tells.
  bool IsLess(Run& run, Span span, void const* left, void const* right, bool& has_failed) const;

 private:
  bool IsLessByOperator(Run& run, Span span, void const* left, void const* right,
                        bool& has_failed) const;

  TypeEntry const& type_;
  OperatorEntry const* less_;
};

class NumberPlan : public CompositePlan {
 public:
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "number"; }
};

class FirstPlan : public CompositePlan {
 public:
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "first"; }
};

class LastPlan : public CompositePlan {
 public:
  explicit LastPlan(FrameLayout& layout) : copies_(layout.ReserveCopies()) {}
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "last"; }

 private:
  std::size_t copies_;
};

class UniqueValuesPlan : public CompositePlan {
 public:
  UniqueValuesPlan(ValueOrder order, FrameLayout& layout)
      : order_(order), copies_(layout.ReserveCopies()) {}
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "unique values"; }

 private:
  bool SortAndDrop(Run& run, CopiedValues& values) const;

  ValueOrder order_;
  std::size_t copies_;
};

// The smallest value, or the largest; of equal ones the first.
class ExtremePlan : public CompositePlan {
 public:
  ExtremePlan(bool is_maximum, ValueOrder order, FrameLayout& layout)
      : is_maximum_(is_maximum), order_(order), copies_(layout.ReserveCopies()) {}
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return is_maximum_ ? "maximum" : "minimum"; }

 private:
  bool is_maximum_;
  ValueOrder order_;
  std::size_t copies_;
};

// Of integers: 0 for none.
class IntegerSumPlan : public CompositePlan {
 public:
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "sum"; }
};

// Of another type, by its "+": no such object for no values.
class SumPlan : public CompositePlan {
 public:
  SumPlan(OperatorEntry const& add, FrameLayout& layout)
      : add_(add), slot_(layout.Reserve(add.result->size)), copies_(layout.ReserveCopies()) {}
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "sum"; }

 private:
  OperatorEntry const& add_;
  std::size_t slot_;
  std::size_t copies_;
};

class ConcatenationPlan : public CompositePlan {
 public:
  ConcatenationPlan(std::string separator, FrameLayout& layout)
      : separator_(std::move(separator)), copies_(layout.ReserveCopies()) {}
  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "concatenation"; }

 private:
  std::string separator_;
  std::size_t copies_;
};

}  // namespace gatotu
