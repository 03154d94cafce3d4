#include "host/capture_command.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>

#include "frameworks/CoreFoundation/recorded_facts.h"
#include "host/capture_manifest.h"
#include "host/capture_report.h"
#include "host/capture_verification.h"
#include "host/output.h"
#include "host/recorded_expressions.h"
#include "host/time_limit.h"
#include "machine/capture/capture.h"
#include "machine/capture/recorder.h"

namespace gatotu::host {
namespace {

namespace fs = std::filesystem;

// Looked at before anything is asked, since that may take long. The answer is what is wrong.
std::optional<std::string> WhyUnfit(std::string const& folder) {
  std::error_code error;
  fs::file_status const status = fs::status(folder, error);
  if (status.type() == fs::file_type::not_found) {
    fs::path const above = fs::absolute(folder + "/..", error).lexically_normal();
    if (::access(above.c_str(), W_OK | X_OK) == 0) return std::nullopt;
    return folder + ": " + std::strerror(errno);
  }
  if (error) return folder + ": " + error.message();
  if (status.type() != fs::file_type::directory) return folder + ": exists and is no folder";
  bool const is_empty = fs::is_empty(folder, error);
  if (error) return folder + ": " + error.message();
  if (!is_empty) return folder + ": not empty; a capture wants a new or an empty folder";
  if (::access(folder.c_str(), W_OK | X_OK) != 0) return folder + ": " + std::strerror(errno);
  return std::nullopt;
}

// What is done outside of evaluations, under the same limit.
class LimitedWork {
 public:
  LimitedWork(CommandLine const& line, std::string when_stopped)
      : when_stopped_(std::move(when_stopped)),
        watchdog_(line.ask.time_limit, [this] { Leave(); }) {}

  // False when it was to stop meanwhile.
  bool Do(FunctionRef<void()> work) {
    watchdog_.Begin();
    work();
    watchdog_.End();
    return !watchdog_.HasAskedToStop();
  }
  void SayStopped() {
    Complain((watchdog_.IsExpired() ? "the time limit was reached; " : "interrupted; ") +
             when_stopped_);
  }

 private:
  // On the watchdog's thread, while the work hangs.
  [[noreturn]] void Leave() {
    SayStopped();
    ::_exit(static_cast<int>(ExitStatus::kInterrupted));
  }

  std::string when_stopped_;
  Watchdog watchdog_;
};

ExitStatus Record(CommandLine const& line, machine::Recorder& recorder, ExpressionCounts& counts) {
  std::string const nothing_written = line.capture.folder + ": no capture was written";
  if (line.capture.is_for_expressions) {
    ExitStatus const status = EvaluateExpressions(line, counts);
    if (status != ExitStatus::kAnswered) Complain(nothing_written);
    return status;
  }
  LimitedWork work(line, nothing_written);
  bool const is_whole = work.Do([&] {
    recorder.RecordEverything();
    AskVocabulary();
  });
  if (is_whole) return ExitStatus::kAnswered;
  work.SayStopped();
  return ExitStatus::kInterrupted;
}

// Without the list of digests a capture can be asked all the same, but it is not what was wanted.
std::optional<std::string> WriteAll(CommandLine const& line, machine::Recorder const& recorder) {
  CaptureRequest const& request = line.capture;
  machine::Fact<machine::Done> written = machine::Absence{};
  // What was whole before it could be stopped is a capture all the same.
  LimitedWork(line, request.folder + ": what is there is no capture").Do([&] {
    written = recorder.Write(
        request.folder, &WriteRecordedFacts,
        request.is_redacted ? machine::Redacting::kNames : machine::Redacting::kNothing);
  });
  if (!written) return machine::CaptureMessage(written.absence());
  std::optional<std::string> failure;
  LimitedWork(line, request.folder + ": is a capture without digests").Do([&] {
    failure = WriteManifest(request.folder);
  });
  return failure;
}

// What cannot be finished is taken away again where the folder is ours. One that was there before
// may have got something else meanwhile.
ExitStatus Write(CommandLine const& line, machine::Recorder const& recorder) {
  std::string const& folder = line.capture.folder;
  // What a machine answers is nobody else's business unless its owner says so.
  bool const is_ours = ::mkdir(folder.c_str(), 0700) == 0;
  if (!is_ours && errno != EEXIST) {
    Complain(folder + ": " + std::strerror(errno));
    return ExitStatus::kNoAnswer;
  }
  std::optional<std::string> const reason = WriteAll(line, recorder);
  if (!reason) return ExitStatus::kAnswered;
  std::error_code ignored;
  if (is_ours) fs::remove_all(folder, ignored);
  Complain(is_ours ? *reason : *reason + "; what is there is no whole capture");
  return ExitStatus::kNoAnswer;
}

// A pattern has to say where it begins.
ExitStatus TakeFiles(CommandLine const& line, machine::Recorder& recorder) {
  std::string const nothing_written = line.capture.folder + ": no capture was written";
  LimitedWork work(line, nothing_written);
  ExitStatus status = ExitStatus::kAnswered;
  bool const is_whole = work.Do([&] {
    for (std::string const& pattern : line.capture.patterns) {
      auto const found = recorder.TakeFiles(pattern);
      if (found && *found == 0) Complain("--with-files: nothing is " + pattern);
      if (found) continue;
      Complain("--with-files: " + pattern + " leads neither from / nor from a home, ~/");
      status = ExitStatus::kRefused;
    }
  });
  if (!is_whole) work.SayStopped();
  if (is_whole && status != ExitStatus::kAnswered) Complain(nothing_written);
  return is_whole ? status : ExitStatus::kInterrupted;
}

machine::RecordingLimits LimitsOf(CaptureRequest const& request) {
  machine::RecordingLimits limits;
  if (request.most_bytes) limits.content_bytes = *request.most_bytes;
  if (request.most_file_bytes) limits.file_bytes = *request.most_file_bytes;
  // Names in a text are found as a whole or not at all.
  limits.has_parts = !request.is_redacted;
  return limits;
}

// A file in the folder may be of any size.
ExitStatus Verify(CommandLine const& line) {
  std::string const& folder = line.capture.folder;
  ManifestCheck checked;
  LimitedWork(line, folder + ": not all of it was looked at").Do([&] {
    checked = CheckManifest(folder);
  });
  return TellOfVerification(folder, checked);
}

}  // namespace

ExitStatus Capture(CommandLine const& line, std::shared_ptr<machine::Machine const> machine) {
  if (line.capture.is_to_verify) return Verify(line);
  if (auto const reason = WhyUnfit(line.capture.folder)) {
    Complain(*reason);
    return ExitStatus::kRefused;
  }
  machine::Recorder recorder(std::move(machine), LimitsOf(line.capture));
  machine::SetCurrentMachine(recorder.RecordingMachine());
  ExpressionCounts counts;
  ExitStatus const recorded = Record(line, recorder, counts);
  if (recorded != ExitStatus::kAnswered) return recorded;
  ExitStatus const taken = TakeFiles(line, recorder);
  if (taken != ExitStatus::kAnswered) return taken;
  ExitStatus const written = Write(line, recorder);
  if (written == ExitStatus::kAnswered) TellOfCapture(line.capture, counts, recorder);
  return written;
}

}  // namespace gatotu::host
