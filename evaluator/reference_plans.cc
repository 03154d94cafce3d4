#include "evaluator/reference_plans.h"

namespace gatotu {
namespace {

// Constructs the state of an iteration and destroys it exactly once.
class IterationState {
 public:
  IterationState(PropertyRecord const& record, void* storage) : record_(record), state_(storage) {}
  ~IterationState() {
    if (is_constructed_ && record_.destroy != nullptr) record_.destroy(state_);
  }
  IterationState(IterationState const&) = delete;
  IterationState& operator=(IterationState const&) = delete;

  bool Construct() {
    if (record_.construct != nullptr) record_.construct(state_);
    return is_constructed_ = true;
  }
  void* Get() const { return state_; }

 private:
  PropertyRecord const& record_;
  void* state_;
  bool is_constructed_ = false;
};

}  // namespace

Flow ProduceBoolean(Plan const& plan, Run& run, bool& answer) {
  Flow flow = plan.Produce(run, [&](void const* value) {
    answer = *static_cast<bool const*>(value);
    return Flow::kContinue;
  });
  return flow == Flow::kFail ? Flow::kFail : Flow::kContinue;
}

Flow PropertyPlan::Produce(Run& run, Sink sink) const {
  if (parameter == nullptr) return ProduceOf(run, nullptr, sink);
  return parameter->Produce(run, [&](void const* value) { return ProduceOf(run, value, sink); });
}

Flow PropertyPlan::ProduceOf(Run& run, void const* parameter_value, Sink sink) const {
  auto apply = [&](void const* object_value) {
    return property_.is_iterated ? Iterate(run, parameter_value, object_value, sink)
                                 : Get(run, parameter_value, object_value, sink);
  };
  return object == nullptr ? apply(nullptr) : object->Produce(run, apply);
}

Flow PropertyPlan::Get(Run& run, void const* parameter_value, void const* object_value,
                       Sink sink) const {
  PropertyRecord const& record = *property_.record;
  Arena::Mark mark = run.Memory().Here();
  std::size_t evidence_begin = run.EvidencePosition();
  void* slot = run.Slot(value_slot_);
  Got got = run.Call(property_.singular, span, [&] {
    return record.first(slot, parameter_value, object_value, nullptr, record.context);
  });
  Flow flow = Flow::kFail;
  if (got == Got::kValue) {
    ValueOwner owner(slot, property_.result->destroy);
    flow = run.IsToStop() ? run.FailStopped(span) : sink(slot);
  } else if (got == Got::kNothing) {
    flow = EndWithout(run, evidence_begin);
  }
  run.Memory().Rewind(mark);
  return flow;
}

Flow PropertyPlan::EndWithout(Run& run, std::size_t evidence_begin) const {
  if (run.IsToStop()) return run.FailStopped(span);
  return absorbs_absence ? Flow::kContinue : run.FailNoSuchObject(span, evidence_begin);
}

Flow PropertyPlan::Iterate(Run& run, void const* parameter_value, void const* object_value,
                           Sink sink) const {
  Arena::Mark mark = run.Memory().Here();
  Flow flow = Flow::kFail;
  {
    IterationState state(*property_.record, run.Slot(state_slot_));
    Got const got = run.Call(property_.plural, span, [&] { return state.Construct(); });
    if (got == Got::kValue) {
      flow = IterateItems(run, parameter_value, object_value, state.Get(), sink);
    } else if (got == Got::kNothing) {
      // Some iterators ask their system already when they are made.
      flow = run.IsToStop() ? run.FailStopped(span) : Flow::kContinue;
    }
  }
  run.Memory().Rewind(mark);
  return flow;
}

Flow PropertyPlan::IterateItems(Run& run, void const* parameter_value, void const* object_value,
                                void* state, Sink sink) const {
  PropertyRecord const& record = *property_.record;
  void* slot = run.Slot(value_slot_);
  for (InspectorGet step = record.first;; step = record.next_item) {
    // An iterator keeps no evaluator memory between items, so a stream of any length runs in the
    // memory of one item.
    Arena::Mark mark = run.Memory().Here();
    Got got = run.Call(property_.plural, span, [&] {
      return step(slot, parameter_value, object_value, state, record.context);
    });
    Flow flow = Flow::kFail;
    if (got == Got::kValue) {
      ValueOwner owner(slot, property_.result->destroy);
      flow = run.IsToStop() ? run.FailStopped(span) : sink(slot);
    } else if (got == Got::kNothing) {
      return run.IsToStop() ? run.FailStopped(span) : Flow::kContinue;
    }
    if (flow != Flow::kContinue) return flow;
    run.Memory().Rewind(mark);
  }
}

std::string PropertyPlan::Label() const {
  std::string label = is_many ? property_.plural : property_.singular;
  if (label.empty()) label = property_.singular;
  return property_.is_iterated ? label + " (iterated)" : label;
}

void PropertyPlan::VisitChildren(ChildVisitor visit) const {
  if (parameter != nullptr) visit(*parameter);
  if (object != nullptr) visit(*object);
}

Flow SinglePlan::Produce(Run& run, Sink sink) const {
  std::size_t evidence_begin = run.EvidencePosition();
  bool has_value = false;
  Flow flow = source_->Produce(run, [&](void const* value) {
    if (has_value) return run.FailNotUnique(span, plural_);
    has_value = true;
    return sink(value);
  });
  if (flow == Flow::kContinue && !has_value) return run.FailNoSuchObject(span, evidence_begin);
  return flow;
}

Flow CastPlan::Produce(Run& run, Sink sink) const {
  return source_->Produce(run, [&](void const* source) { return Apply(run, source, sink); });
}

Flow CastPlan::Apply(Run& run, void const* source, Sink sink) const {
  Arena::Mark mark = run.Memory().Here();
  std::size_t evidence_begin = run.EvidencePosition();
  void* slot = run.Slot(slot_);
  Got got = run.Call(cast_.name, span, [&] {
    cast_.record->cast(slot, source, cast_.record->context);
    return true;
  });
  Flow flow = Flow::kFail;
  if (got == Got::kValue) {
    ValueOwner owner(slot, cast_.result->destroy);
    flow = run.IsToStop() ? run.FailStopped(span) : sink(slot);
  } else if (got == Got::kNothing) {
    flow = run.IsToStop() ? run.FailStopped(span)
           : is_many      ? Flow::kContinue
                          : run.FailNoSuchObject(span, evidence_begin);
  }
  run.Memory().Rewind(mark);
  return flow;
}

Flow OperatorPlan::Produce(Run& run, Sink sink) const {
  return left_->Produce(run, [&](void const* left) {
    return right_->Produce(run, [&](void const* right) {
      return swaps_ ? Apply(run, right, left, sink) : Apply(run, left, right, sink);
    });
  });
}

Flow OperatorPlan::Apply(Run& run, void const* left, void const* right, Sink sink) const {
  Arena::Mark mark = run.Memory().Here();
  std::size_t evidence_begin = run.EvidencePosition();
  void* slot = run.Slot(slot_);
  Got got = run.Call(sign_, span, [&] {
    entry_.record->apply(slot, left, right, entry_.record->context);
    return true;
  });
  Flow flow = Flow::kFail;
  if (got == Got::kValue) {
    ValueOwner owner(slot, entry_.result->destroy);
    flow = run.IsToStop() ? run.FailStopped(span) : sink(slot);
  } else if (got == Got::kNothing) {
    flow = run.IsToStop() ? run.FailStopped(span) : run.FailNoSuchObject(span, evidence_begin);
  }
  run.Memory().Rewind(mark);
  return flow;
}

void OperatorPlan::VisitChildren(ChildVisitor visit) const {
  visit(*left_);
  visit(*right_);
}

}  // namespace gatotu
