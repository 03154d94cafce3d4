#include "evaluator/grammar_plans.h"

namespace gatotu {
namespace {

void Bind(Run& run, std::size_t slot, void const* value) {
  *static_cast<void const**>(run.Slot(slot)) = value;
}

}  // namespace

Flow FilterPlan::Produce(Run& run, Sink sink) const {
  return children[0]->Produce(run, [&](void const* value) {
    Bind(run, it_slot_, value);
    Arena::Mark mark = run.Memory().Here();
    bool holds = false;
    if (ProduceBoolean(*children[1], run, holds) == Flow::kFail) {
      if (!run.HasNoSuchObject()) return Flow::kFail;
      run.ForgetFailure();
      holds = false;
    }
    run.Memory().Rewind(mark);
    return holds ? sink(value) : Flow::kContinue;
  });
}

Flow MapPlan::Produce(Run& run, Sink sink) const {
  return children[0]->Produce(run, [&](void const* value) {
    Bind(run, it_slot_, value);
    bool is_consumers = false;  // whether what ended the body came from behind it
    Flow flow = children[1]->Produce(run, [&](void const* result) {
      Flow consumed = sink(result);
      is_consumers = consumed != Flow::kContinue;
      return consumed;
    });
    if (flow == Flow::kFail && !is_consumers && is_many && run.HasNoSuchObject()) {
      run.ForgetFailure();
      return Flow::kContinue;
    }
    return flow;
  });
}

Flow CollectionPlan::Produce(Run& run, Sink sink) const {
  for (PlanPointer const& child : children) {
    Flow flow = child->Produce(run, sink);
    if (flow != Flow::kContinue) return flow;
  }
  return Flow::kContinue;
}

Flow TuplePlan::ProduceFrom(Run& run, std::size_t index, Sink sink) const {
  auto** members = static_cast<void const**>(run.Slot(slot_));
  if (index == children.size()) return sink(members);
  return children[index]->Produce(run, [&](void const* value) {
    members[index] = value;
    return ProduceFrom(run, index + 1, sink);
  });
}

Flow ItemPlan::Produce(Run& run, Sink sink) const {
  return children[0]->Produce(
      run, [&](void const* tuple) { return sink(static_cast<void const* const*>(tuple)[index_]); });
}

Flow ChoicePlan::Produce(Run& run, Sink sink) const {
  bool holds = false;
  if (ProduceBoolean(*children[0], run, holds) == Flow::kFail) return Flow::kFail;
  return children[holds ? 1 : 2]->Produce(run, sink);
}

Flow FallbackPlan::Produce(Run& run, Sink sink) const {
  Flow flow = Flow::kContinue;
  for (PlanPointer const& child : children) {
    if (flow == Flow::kFail) run.ForgetFailure();
    bool has_value = false;
    flow = child->Produce(run, [&](void const* value) {
      has_value = true;
      return sink(value);
    });
    if (has_value || flow == Flow::kStop) return flow;
    if (flow == Flow::kFail && !run.HasNoSuchObject()) return flow;
  }
  return flow;
}

Flow JunctionPlan::Produce(Run& run, Sink sink) const {
  bool answer = neutral_;
  for (PlanPointer const& child : children) {
    if (ProduceBoolean(*child, run, answer) == Flow::kFail) return Flow::kFail;
    if (answer != neutral_) break;
  }
  return sink(&answer);
}

Flow NotPlan::Produce(Run& run, Sink sink) const {
  bool holds = false;
  if (ProduceBoolean(*children[0], run, holds) == Flow::kFail) return Flow::kFail;
  bool answer = !holds;
  return sink(&answer);
}

Flow ExistsPlan::Produce(Run& run, Sink sink) const {
  bool answer = false;
  Flow flow = children[0]->Produce(run, [&](void const*) {
    answer = true;
    return Flow::kStop;
  });
  if (flow == Flow::kFail) {
    if (!run.HasNoSuchObject()) return Flow::kFail;
    run.ForgetFailure();
  }
  return sink(&answer);
}

Flow NegatePlan::Produce(Run& run, Sink sink) const {
  return children[0]->Produce(run, [&](void const* value) {
    std::int64_t negative = 0;
    if (__builtin_sub_overflow(std::int64_t{0}, *static_cast<std::int64_t const*>(value),
                               &negative)) {
      return run.Fail("integer-overflow", span, "the result does not fit in 64 bits");
    }
    return sink(&negative);
  });
}

}  // namespace gatotu
