// A compiled expression is a tree of plans. A value cannot be copied: it stays where its inspector
// constructed it, and what it was taken from outlives it. So a plan pushes each value on to its
// consumer while the producer's storage is alive, and takes it back when the consumer returns.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "evaluator/diagnostics.h"
#include "evaluator/function_ref.h"
#include "evaluator/run.h"
#include "evaluator/static_type.h"

namespace gatotu {

class Plan {
 public:
  using ChildVisitor = FunctionRef<void(Plan const&)>;

  Plan() = default;
  virtual ~Plan() = default;
  Plan(Plan const&) = delete;
  Plan& operator=(Plan const&) = delete;

  // Pushes the values in order. A plan of one value pushes it and may fail afterwards, when there
  // turns out to be another: its consumer's own answer falls with it.
  virtual Flow Produce(Run& run, Sink sink) const = 0;

  // For the explanation of an expression: what this is, and what it is made of.
  virtual std::string Label() const = 0;
  virtual void VisitChildren(ChildVisitor) const {}

  StaticType const* type = nullptr;
  bool is_many = false;
  bool is_constant = false;  // the same at each evaluation, as far as registrations say
  Span span;
};

using PlanPointer = std::unique_ptr<Plan>;

// The boolean that a plan of one boolean produces. kFail when it has none; never kStop.
Flow ProduceBoolean(Plan const& plan, Run& run, bool& answer);

// Destroys a value of a registered type when the consumer is done with it, however it leaves.
class ValueOwner {
 public:
  ValueOwner(void const* value, InspectorDestroy destroy) : value_(value), destroy_(destroy) {}
  ~ValueOwner() {
    if (destroy_ != nullptr) destroy_(value_);
  }
  ValueOwner(ValueOwner const&) = delete;
  ValueOwner& operator=(ValueOwner const&) = delete;

 private:
  void const* value_;
  InspectorDestroy destroy_;
};

// Where values lie in the frame of an evaluation, each place aligned for any object.
class FrameLayout {
 public:
  std::size_t Reserve(std::size_t size) {
    std::size_t offset = size_;
    constexpr std::size_t kAlignment = alignof(std::max_align_t);
    size_ += std::max(kAlignment, (size + kAlignment - 1) / kAlignment * kAlignment);
    return offset;
  }
  std::size_t ReserveCopies() { return copies_++; }

  std::size_t Size() const { return size_; }
  std::size_t Copies() const { return copies_; }

 private:
  std::size_t size_ = 0;
  std::size_t copies_ = 0;
};

}  // namespace gatotu
