#include "host/asker.h"

#include <unistd.h>

#include "host/host_context.h"
#include "host/property_list_answers.h"
#include "host/property_list_json.h"

namespace gatotu::host {
namespace {

ExitStatus StatusOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::kAnswered:
      return ExitStatus::kAnswered;
    case Outcome::kInterrupted:
    case Outcome::kTimeLimit:
      return ExitStatus::kInterrupted;
    default:
      return ExitStatus::kNoAnswer;
  }
}

std::int64_t MicrosecondsSince(std::chrono::steady_clock::time_point begin) {
  return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() -
                                                               begin)
      .count();
}

Diagnostic StopDiagnostic(Report const& report, bool is_time_limit) {
  Diagnostic diagnostic;
  diagnostic.code = is_time_limit ? "time-limit" : "interrupted";
  diagnostic.message = is_time_limit ? "the time limit was reached" : "interrupted";
  diagnostic.position = PositionIn(report.text, 0, report.text.size());
  return diagnostic;
}

Diagnostic TooLongDiagnostic(Report const& report) {
  Diagnostic diagnostic;
  diagnostic.code = "answer-too-long";
  diagnostic.message = "the property lists of the answer take more than " +
                       std::to_string(kMostPropertyListBytes) + " bytes as JSON";
  diagnostic.position = PositionIn(report.text, 0, report.text.size());
  return diagnostic;
}

}  // namespace

Asker::Asker(AskOptions const& options, AnswerWriter& writer, Output const& answers)
    : options_(options),
      writer_(writer),
      answers_(answers),
      log_(options.evidence ? EvidenceLog::Keep::kAll : EvidenceLog::Keep::kFailures),
      watchdog_(options.time_limit, [this] { Abandon(); }) {}

ExitStatus Asker::Ask(std::string_view text) {
  Report report;
  report.text = text;
  report.has_evidence = options_.evidence;
  report.has_timing = options_.timing;
  log_.Clear();

  Compilation compilation;
  Compile(report, compilation);
  ExitStatus status = ExitStatus::kRefused;
  if (compilation.expression != nullptr) {
    status = ExitStatus::kAnswered;
    if (options_.explain) report.explanation = compilation.expression->Explain();
    if (!options_.explain && !options_.check_only) {
      status = LetDirectoryAnswer(report, *report.expression) ? Evaluate(report, *report.expression)
                                                              : ExitStatus::kInterrupted;
    }
  }
  std::lock_guard lock(writing_);
  writer_.End(report);
  return status;
}

void Asker::Compile(Report& report, Compilation& compilation) {
  auto const begin = Clock::now();
  compilation = CompileToShow(report.text, writer_.ShowsPropertyLists());
  report.compile_microseconds = MicrosecondsSince(begin);
  report.expression = compilation.expression.get();
  report.diagnostics = std::move(compilation.diagnostics);
}

void Asker::TendDirectory() {
  if (HostContext const* const context = CurrentHostContext()) context->Directory().Tend();
}

// What an expression asks of the directory is known when it was evaluated, so that comes first, and
// tells nothing; what comes of it may have it ask for more.
bool Asker::LetDirectoryAnswer(Report& report, Expression const& expression) {
  TendDirectory();
  HostContext const* const context = CurrentHostContext();
  bool const waits = options_.directory_wait.count() > 0 && context != nullptr &&
                     context->Directory().Cache() != nullptr;
  if (!waits) return true;
  auto const end = Clock::now() + options_.directory_wait;
  bool is_stopped = false;
  do {
    is_stopped = StatusOf(Rehearse(report, expression).outcome) == ExitStatus::kInterrupted;
  } while (!is_stopped && context->Directory().Await(end, &Watchdog::HasInterrupt));
  log_.Clear();
  if (!is_stopped && !Watchdog::HasInterrupt()) return true;
  report.diagnostics.push_back(StopDiagnostic(report, watchdog_.IsExpired()));
  return false;
}

Evaluation Asker::Rehearse(Report& report, Expression const& expression) {
  EvaluateOptions options;
  options.time_limit = options_.time_limit;
  options.evidence = &log_;  // which belongs to what the evaluator keeps
  {
    std::lock_guard lock(writing_);
    current_ = &report;
  }
  watchdog_.Begin();
  Evaluation evaluation = gatotu::Evaluate(
      expression, [](Value const&) { return true; }, options);
  watchdog_.End();
  std::lock_guard lock(writing_);
  current_ = nullptr;
  return evaluation;
}

ExitStatus Asker::Evaluate(Report& report, Expression const& expression) {
  EvaluateOptions options;
  options.time_limit = options_.time_limit;
  options.evidence = &log_;
  report.is_evaluated = true;
  writer_.Begin(expression);
  {
    std::lock_guard lock(writing_);
    current_ = &report;
  }

  watchdog_.Begin();
  auto const begin = Clock::now();
  Preparation preparation = Preparation::kReady;
  Evaluation evaluation = gatotu::Evaluate(
      expression,
      [this, &preparation](Value const& value) {
        preparation = writer_.Prepare(value, [this] { return watchdog_.HasAskedToStop(); });
        if (preparation != Preparation::kReady) return false;
        std::lock_guard lock(writing_);
        writer_.Write();
        return !answers_.IsBroken();
      },
      options);
  watchdog_.End();

  std::lock_guard lock(writing_);
  current_ = nullptr;
  report.evaluate_microseconds = MicrosecondsSince(begin);
  if (preparation == Preparation::kTooLong) {
    evaluation.outcome = Outcome::kFailed;
    evaluation.diagnostic = TooLongDiagnostic(report);
  } else if (preparation == Preparation::kStopped) {
    evaluation.outcome = Outcome::kInterrupted;
    evaluation.diagnostic = StopDiagnostic(report, false);
  }
  if (evaluation.outcome == Outcome::kInterrupted && watchdog_.IsExpired()) {
    evaluation.diagnostic = StopDiagnostic(report, true);
  }
  if (!evaluation.IsAnswered()) report.diagnostics.push_back(std::move(evaluation.diagnostic));
  if (evaluation.outcome == Outcome::kNoSuchObject || evaluation.outcome == Outcome::kFailed) {
    report.reasons = log_.Reasons(evaluation.evidence_begin, evaluation.evidence_end);
  }
  if (options_.evidence) report.evidence = log_.Consultations();
  return StatusOf(evaluation.outcome);
}

void Asker::Abandon() {
  // A write that blocks does not keep us.
  constexpr std::chrono::milliseconds kPatience{200}, kPause{1};
  auto const end = Clock::now() + kPatience;
  bool is_ours = writing_.try_lock();
  while (!is_ours && Clock::now() < end) {
    std::this_thread::sleep_for(kPause);
    is_ours = writing_.try_lock();
  }
  // The evaluating thread may be anywhere but here: what it holds besides is left alone.
  if (is_ours && current_ != nullptr) {
    Report report;
    report.text = current_->text;
    report.expression = current_->expression;
    report.is_evaluated = current_->is_evaluated;
    report.compile_microseconds = current_->compile_microseconds;
    report.evaluate_microseconds =
        std::chrono::duration_cast<std::chrono::microseconds>(options_.time_limit).count();
    report.diagnostics.push_back(StopDiagnostic(report, watchdog_.IsExpired()));
    writer_.End(report);
  }
  ::_exit(static_cast<int>(ExitStatus::kInterrupted));
}

}  // namespace gatotu::host
