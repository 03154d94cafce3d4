#include "evaluator/kept_plan.h"

namespace gatotu {

std::uint64_t KeptPlan::epoch = 1;

bool KeptPlan::IsUsable(Run const& run) const {
  return result_epoch_ == epoch && (run.Evidence() == nullptr || has_evidence_);
}

Flow KeptPlan::Produce(Run& run, Sink sink) const {
  if (!IsUsable(run)) {
    // The outer evaluation may still be showing the result that would be replaced.
    if (run.IsNested()) return source_->Produce(run, sink);
    Flow flow = Evaluate(run);
    if (flow != Flow::kContinue) return flow;
  } else if (run.Evidence() != nullptr && evidence_ != nullptr) {
    run.Evidence()->Announce(evidence_.get());
  }
  inspector_string room;
  return sink(result_.Get(0, room));
}

Flow KeptPlan::Evaluate(Run& run) const {
  result_epoch_ = 0;
  std::size_t evidence_begin = run.EvidencePosition();
  Flow flow = source_->Produce(run, [&](void const* value) {
    result_.Start(*type->entry);
    return run.Keep(result_, span, value);
  });
  if (flow != Flow::kContinue) return flow;
  has_evidence_ = run.Evidence() != nullptr;
  evidence_ = has_evidence_ && run.EvidencePosition() > evidence_begin
                  ? run.Evidence()->Copy(evidence_begin, run.EvidencePosition())
                  : nullptr;
  result_epoch_ = epoch;
  return Flow::kContinue;
}

}  // namespace gatotu
