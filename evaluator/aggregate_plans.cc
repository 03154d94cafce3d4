#include "evaluator/aggregate_plans.h"

#include <algorithm>
#include <cstring>

namespace gatotu {
namespace {

template <class T>
bool IsLessAs(void const* left, void const* right) {
  return *static_cast<T const*>(left) < *static_cast<T const*>(right);
}

bool IsLessBytes(void const* left, void const* right) {
  auto const& a = *static_cast<inspector_string const*>(left);
  auto const& b = *static_cast<inspector_string const*>(right);
  std::size_t common = std::min(a.length, b.length);
  int order = common > 0 ? std::memcmp(a.start, b.start, common) : 0;
  return order != 0 ? order < 0 : a.length < b.length;
}

}  // namespace

bool ValueOrder::IsBuiltIn(TypeEntry const& type) { return type.kind != ValueType::Kind::kObject; }

bool ValueOrder::IsLess(Run& run, Span span, void const* left, void const* right,
                        bool& has_failed) const {
  switch (type_.kind) {
    case ValueType::Kind::kString:
      return IsLessBytes(left, right);
    case ValueType::Kind::kInteger:
    case ValueType::Kind::kHertz:
      return IsLessAs<std::int64_t>(left, right);
    case ValueType::Kind::kBoolean:
      return IsLessAs<bool>(left, right);
    default:
      return IsLessByOperator(run, span, left, right, has_failed);
  }
}

bool ValueOrder::IsLessByOperator(Run& run, Span span, void const* left, void const* right,
                                  bool& has_failed) const {
  if (has_failed) return false;
  bool answer = false;
  Arena::Mark mark = run.Memory().Here();
  std::size_t evidence_begin = run.EvidencePosition();
  Got got = run.Call("<", span, [&] {
    less_->record->apply(&answer, left, right, less_->record->context);
    return true;
  });
  run.Memory().Rewind(mark);
  if (got == Got::kValue && !run.IsToStop()) return answer;
  if (got == Got::kNothing) run.FailNoSuchObject(span, evidence_begin);
  if (run.IsToStop()) run.FailStopped(span);
  has_failed = true;
  return false;
}

Flow NumberPlan::Produce(Run& run, Sink sink) const {
  std::int64_t count = 0;
  Flow flow = children[0]->Produce(run, [&](void const*) {
    ++count;
    return Flow::kContinue;
  });
  return flow == Flow::kFail ? flow : sink(&count);
}

Flow FirstPlan::Produce(Run& run, Sink sink) const {
  std::size_t evidence_begin = run.EvidencePosition();
  bool has_value = false;
  Flow consumed = Flow::kContinue;
  Flow flow = children[0]->Produce(run, [&](void const* value) {
    has_value = true;
    consumed = sink(value);
    return consumed == Flow::kFail ? Flow::kFail : Flow::kStop;
  });
  if (flow == Flow::kFail) return flow;
  return has_value ? consumed : run.FailNoSuchObject(span, evidence_begin);
}

Flow LastPlan::Produce(Run& run, Sink sink) const {
  std::size_t evidence_begin = run.EvidencePosition();
  CopiedValues& last = run.Copies(copies_);
  last.Start(*type->entry);
  Flow flow = children[0]->Produce(run, [&](void const* value) {
    last.Start(*type->entry);
    return run.Keep(last, span, value);
  });
  if (flow == Flow::kFail) return flow;
  if (last.Count() == 0) return run.FailNoSuchObject(span, evidence_begin);
  inspector_string room;
  return sink(last.Get(0, room));
}

Flow UniqueValuesPlan::Produce(Run& run, Sink sink) const {
  CopiedValues& values = run.Copies(copies_);
  values.Start(*type->entry);
  Flow flow =
      children[0]->Produce(run, [&](void const* value) { return run.Keep(values, span, value); });
  if (flow == Flow::kFail || !SortAndDrop(run, values)) return Flow::kFail;
  for (std::size_t i = 0; i < values.Count(); ++i) {
    inspector_string room;
    flow = sink(values.Get(i, room));
    if (flow != Flow::kContinue) return flow;
  }
  return Flow::kContinue;
}

bool UniqueValuesPlan::SortAndDrop(Run& run, CopiedValues& values) const {
  bool has_failed = false;
  auto before = [&](std::size_t i, std::size_t j) {
    inspector_string left;
    inspector_string right;
    return order_.IsLess(run, span, values.Get(i, left), values.Get(j, right), has_failed);
  };
  values.Sort(before);
  std::size_t kept = std::min<std::size_t>(1, values.Count());
  for (std::size_t i = 1; i < values.Count(); ++i) {
    if (before(kept - 1, i)) values.Move(i, kept++);
  }
  values.Truncate(kept);
  return !has_failed;
}

Flow ExtremePlan::Produce(Run& run, Sink sink) const {
  std::size_t evidence_begin = run.EvidencePosition();
  CopiedValues& best = run.Copies(copies_);
  best.Start(*type->entry);
  bool has_failed = false;
  Flow flow = children[0]->Produce(run, [&](void const* value) {
    inspector_string room;
    void const* held = best.Count() > 0 ? best.Get(0, room) : nullptr;
    bool is_better =
        held == nullptr || (is_maximum_ ? order_.IsLess(run, span, held, value, has_failed)
                                        : order_.IsLess(run, span, value, held, has_failed));
    if (has_failed) return Flow::kFail;
    if (!is_better) return Flow::kContinue;
    best.Start(*type->entry);
    return run.Keep(best, span, value);
  });
  if (flow == Flow::kFail) return flow;
  if (best.Count() == 0) return run.FailNoSuchObject(span, evidence_begin);
  inspector_string room;
  return sink(best.Get(0, room));
}

Flow IntegerSumPlan::Produce(Run& run, Sink sink) const {
  std::int64_t sum = 0;
  Flow flow = children[0]->Produce(run, [&](void const* value) {
    if (__builtin_add_overflow(sum, *static_cast<std::int64_t const*>(value), &sum)) {
      return run.Fail("integer-overflow", span, "the sum does not fit in 64 bits");
    }
    return Flow::kContinue;
  });
  return flow == Flow::kFail ? flow : sink(&sum);
}

Flow SumPlan::Produce(Run& run, Sink sink) const {
  std::size_t evidence_begin = run.EvidencePosition();
  CopiedValues& sum = run.Copies(copies_);
  sum.Start(*type->entry);
  Flow flow = children[0]->Produce(run, [&](void const* value) {
    if (sum.Count() == 0) return run.Keep(sum, span, value);
    inspector_string room;
    void const* left = sum.Get(0, room);
    void* slot = run.Slot(slot_);
    std::size_t before = run.EvidencePosition();
    Got got = run.Call("+", span, [&] {
      add_.record->apply(slot, left, value, add_.record->context);
      return true;
    });
    if (got == Got::kNothing) return run.FailNoSuchObject(span, before);
    if (got == Got::kFailed) return Flow::kFail;
    ValueOwner owner(slot, type->entry->destroy);
    sum.Start(*type->entry);
    return run.IsToStop() ? run.FailStopped(span) : run.Keep(sum, span, slot);
  });
  if (flow == Flow::kFail) return flow;
  if (sum.Count() == 0) return run.FailNoSuchObject(span, evidence_begin);
  inspector_string room;
  return sink(sum.Get(0, room));
}

Flow ConcatenationPlan::Produce(Run& run, Sink sink) const {
  CopiedValues& text = run.Copies(copies_);
  text.Start(*type->entry);
  inspector_string separator{reinterpret_cast<unsigned char const*>(separator_.data()),
                             separator_.size()};
  Flow flow = children[0]->Produce(run, [&](void const* value) {
    if (text.Count() > 0 && separator.length > 0 &&
        run.Keep(text, span, &separator) == Flow::kFail) {
      return Flow::kFail;
    }
    return run.Keep(text, span, value);
  });
  if (flow == Flow::kFail) return flow;
  // The pieces lie behind one another in the buffer.
  inspector_string whole = text.AllBytes();
  return sink(&whole);
}

}  // namespace gatotu
