// One evaluation at work: its storage, the calls into inspectors, and what became of them.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "evaluator/arena.h"
#include "evaluator/copied_values.h"
#include "evaluator/diagnostics.h"
#include "evaluator/evaluator.h"
#include "evaluator/evidence.h"
#include "evaluator/function_ref.h"
#include "evaluator/plugin/exceptions.h"

namespace gatotu {

// What a consumer tells the producer of its values, and a producer the one who started it:
// go on (or: all were produced); nothing more is wanted; something failed and is recorded.
enum class Flow : std::uint8_t { kContinue, kStop, kFail };

// Takes a value; for a tuple an array of the addresses of its members.
using Sink = FunctionRef<Flow(void const*)>;

// Why an evaluation failed, as far as it is known without allocating: having no such object is an
// everyday answer within a plural.
struct Failure {
  Outcome outcome = Outcome::kAnswered;
  Span span;
  std::string_view code;     // of static text
  std::string_view message;  // of static text, or of `detail`
  std::string detail;
  std::string suggestion;
  std::size_t evidence_begin = 0;
  std::size_t evidence_end = 0;
};

// The storage of evaluations, one for each level of nesting, kept from one to the next.
struct Workspace {
  Arena arena;
  std::vector<std::byte> frame;
  std::vector<CopiedValues> copies;
  std::vector<Value> values;
};

// Leaves an inspector that asks whether it is to stop. No class that an inspector knows.
class InspectorInterruption {};

enum class Got : std::uint8_t { kValue, kNothing, kFailed };

class Run {
 public:
  Run(Workspace& workspace, EvaluateOptions const& options);
  ~Run();
  Run(Run const&) = delete;
  Run& operator=(Run const&) = delete;

  // The innermost evaluation of this thread, null for none.
  static Run* Current();

  bool IsNested() const { return outer_ != nullptr; }

  Arena& Memory() { return workspace_.arena; }
  void* Slot(std::size_t offset) { return workspace_.frame.data() + offset; }
  CopiedValues& Copies(std::size_t index) { return workspace_.copies[index]; }
  Workspace& Storage() { return workspace_; }

  // Calls an adapter; an exception becomes data before anything else happens.
  template <class Adapter>
  Got Call(std::string_view name, Span span, Adapter&& adapter);

  // Whether the evaluation is to end. Looked at after each adapter call, because some inspectors
  // turn every exception into "no such object".
  bool IsToStop() const {
    return stop_request.load(std::memory_order_relaxed) || (deadline_ != 0 && IsPastDeadline());
  }

  Flow FailStopped(Span span);
  Flow FailNoSuchObject(Span span, std::size_t evidence_begin);
  Flow Fail(std::string_view code, Span span, std::string_view message);
  // Adds a copy, or fails where it would take too much memory.
  Flow Keep(CopiedValues& values, Span span, void const* value);
  Flow FailNotUnique(Span span, std::string_view plural);

  // Whether what failed may count as an absence; forgetting it then goes on.
  bool HasNoSuchObject() const { return failure_.outcome == Outcome::kNoSuchObject; }
  void ForgetFailure() { failure_.outcome = Outcome::kAnswered; }
  Failure const& What() const { return failure_; }

  EvidenceRecorder* Evidence() const { return evidence_; }
  std::size_t EvidencePosition() const { return evidence_ != nullptr ? evidence_->Position() : 0; }

  // Set by `Interrupt`.
  static std::atomic<bool> stop_request;

 private:
  bool IsPastDeadline() const;
  void RecordException(std::string_view name, Span span, std::size_t evidence_begin);
  void RecordThrown(std::string_view name, Span span, std::string_view what);
  void RecordStatus(std::string_view name, Span span, std::int32_t status);

  Workspace& workspace_;
  EvidenceRecorder* evidence_;
  std::int64_t deadline_ = 0;  // of the coarse monotonic clock, in nanoseconds; 0 for none
  Run* outer_;
  Failure failure_;
};

template <class Adapter>
Got Run::Call(std::string_view name, Span span, Adapter&& adapter) {
  std::size_t evidence_begin = EvidencePosition();
  try {
    return adapter() ? Got::kValue : Got::kNothing;
  } catch (NoSuchObject const&) {
    return Got::kNothing;
  } catch (...) {
    RecordException(name, span, evidence_begin);
    return Got::kFailed;
  }
}

}  // namespace gatotu
