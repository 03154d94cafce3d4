#include "evaluator/run.h"

#include <cxxabi.h>
#include <time.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <typeinfo>

#include "evaluator/plugin/entry_points.h"

namespace gatotu {
namespace {

// Plain, so that touching it costs no guard and pins nothing.
__attribute__((tls_model("initial-exec"))) thread_local Run* current_run = nullptr;

std::int64_t CoarseNow() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return now.tv_sec * 1'000'000'000 + now.tv_nsec;
}

std::string Demangled(char const* name) {
  int status = 0;
  std::unique_ptr<char, void (*)(void*)> text(abi::__cxa_demangle(name, nullptr, nullptr, &status),
                                              std::free);
  return status == 0 ? text.get() : name;
}

std::string CurrentExceptionClass() {
  std::type_info const* type = abi::__cxa_current_exception_type();
  return type != nullptr ? Demangled(type->name()) : "an exception";
}

}  // namespace

std::atomic<bool> Run::stop_request{false};

Run::Run(Workspace& workspace, EvaluateOptions const& options)
    : workspace_(workspace), evidence_(options.evidence), outer_(current_run) {
  if (options.time_limit.count() > 0) deadline_ = CoarseNow() + options.time_limit.count();
  // An evaluation from within another one has no longer to go than that one.
  if (outer_ != nullptr && outer_->deadline_ != 0) {
    deadline_ = deadline_ == 0 ? outer_->deadline_ : std::min(deadline_, outer_->deadline_);
  }
  current_run = this;
}

Run::~Run() { current_run = outer_; }

Run* Run::Current() { return current_run; }

bool Run::IsPastDeadline() const { return CoarseNow() >= deadline_; }

Flow Run::FailStopped(Span span) {
  bool is_interrupted = stop_request.load(std::memory_order_relaxed);
  failure_.outcome = is_interrupted ? Outcome::kInterrupted : Outcome::kTimeLimit;
  failure_.code = is_interrupted ? "interrupted" : "time-limit";
  failure_.message = is_interrupted ? "interrupted" : "the time limit has passed";
  failure_.span = span;
  return Flow::kFail;
}

Flow Run::FailNoSuchObject(Span span, std::size_t evidence_begin) {
  failure_.outcome = Outcome::kNoSuchObject;
  failure_.code = "no-such-object";
  failure_.message = "no such object";
  failure_.span = span;
  failure_.evidence_begin = evidence_begin;
  failure_.evidence_end = EvidencePosition();
  return Flow::kFail;
}

Flow Run::Fail(std::string_view code, Span span, std::string_view message) {
  failure_.outcome = Outcome::kFailed;
  failure_.code = code;
  failure_.message = message;
  failure_.span = span;
  failure_.evidence_begin = failure_.evidence_end = EvidencePosition();
  return Flow::kFail;
}

Flow Run::Keep(CopiedValues& values, Span span, void const* value) {
  if (values.Add(value)) return Flow::kContinue;
  return Fail("too-much-memory", span, "this would take more than 256 MiB of memory");
}

Flow Run::FailNotUnique(Span span, std::string_view plural) {
  failure_.suggestion = plural;
  return Fail("not-unique", span, "not unique: this has several values");
}

void Run::RecordThrown(std::string_view name, Span span, std::string_view what) {
  failure_.detail = "\"";
  failure_.detail.append(name).append("\" failed: ").append(CurrentExceptionClass());
  if (!what.empty()) failure_.detail.append(": ").append(what);
  Fail("inspector-failed", span, failure_.detail);
}

void Run::RecordStatus(std::string_view name, Span span, std::int32_t status) {
  RecordThrown(name, span, "status " + std::to_string(status));
}

void Run::RecordException(std::string_view name, Span span, std::size_t evidence_begin) {
  try {
    throw;
  } catch (InspectorInterruption const&) {
    FailStopped(span);
  } catch (OSError const& error) {
    RecordStatus(name, span, error.Code());
  } catch (std::bad_alloc const&) {
    Fail("out-of-memory", span, "there is not enough memory");
  } catch (std::exception const& error) {
    // The inspectors' own classes say no more than the name of their type.
    std::string_view what = error.what();
    RecordThrown(name, span, what == typeid(error).name() ? std::string_view() : what);
  } catch (...) {
    RecordThrown(name, span, {});
  }
  failure_.evidence_begin = evidence_begin;
  failure_.evidence_end = EvidencePosition();
}

}  // namespace gatotu
