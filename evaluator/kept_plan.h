// A part of an expression whose result depends on constants alone, as its registrations declare:
// evaluated once and kept, with the sources it rested on. Only results that can be copied deeply
// are kept, and never a failure.
#pragma once

#include <cstdint>
#include <memory>

#include "evaluator/copied_values.h"
#include "evaluator/plan.h"

namespace gatotu {

class KeptPlan : public Plan {
 public:
  explicit KeptPlan(PlanPointer source) : source_(std::move(source)) {}

  Flow Produce(Run& run, Sink sink) const override;
  std::string Label() const override { return "kept"; }
  void VisitChildren(ChildVisitor visit) const override { visit(*source_); }

  // Kept results of an earlier epoch are not used any more. Guarded by the registry's lock, as
  // are the results.
  static std::uint64_t epoch;

 private:
  bool IsUsable(Run const& run) const;
  Flow Evaluate(Run& run) const;

  PlanPointer source_;
  // Not part of the compiled form, which is immutable: what evaluations leave behind.
  mutable CopiedValues result_;
  mutable std::uint64_t result_epoch_ = 0;
  mutable bool has_evidence_ = false;
  mutable std::shared_ptr<void const> evidence_;
};

}  // namespace gatotu
