// Asks one expression after the other and hands what comes of them to a writer.
#pragma once

#include <chrono>
#include <mutex>
#include <string_view>

#include "host/answer_writer.h"
#include "host/evidence_log.h"
#include "host/exit_status.h"
#include "host/time_limit.h"
#include "machine/spin_lock.h"

namespace gatotu::host {

struct AskOptions {
  bool check_only = false;
  bool explain = false;
  bool evidence = false;
  bool timing = false;
  std::chrono::nanoseconds time_limit = std::chrono::seconds(30);
  // How long to wait for directory records that an expression needs; 0: what is not there is not
  // there yet.
  std::chrono::nanoseconds directory_wait{0};
};

class Asker {
 public:
  // `answers` is what `writer` writes to, looked at to stop when nobody reads any more.
  Asker(AskOptions const& options, AnswerWriter& writer, Output const& answers);

  ExitStatus Ask(std::string_view text);
  // Hands out what was asked of the directory; each `Ask` begins with it. For when the next one may
  // be long in coming.
  void TendDirectory();

 private:
  using Clock = std::chrono::steady_clock;

  void Compile(Report& report, Compilation& compilation);
  // False when it was to stop meanwhile.
  bool LetDirectoryAnswer(Report& report, Expression const& expression);
  Evaluation Rehearse(Report& report, Expression const& expression);
  ExitStatus Evaluate(Report& report, Expression const& expression);
  // On the watchdog's thread: says why, and leaves.
  [[noreturn]] void Abandon();

  AskOptions options_;
  AnswerWriter& writer_;
  Output const& answers_;
  EvidenceLog log_;
  // Held while the writer is at work.
  machine::SpinLock writing_;
  Report const* current_ = nullptr;
  Watchdog watchdog_;  // last, so that it ends before what it looks at
};

}  // namespace gatotu::host
