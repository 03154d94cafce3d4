// Bytes on their way to a file descriptor, gathered so that a long answer costs few writes and a
// slow one still appears while it grows.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "host/exit_status.h"

namespace gatotu::host {

class Output {
 public:
  // `descriptor` stays the caller's.
  explicit Output(int descriptor) : descriptor_(descriptor) {}
  Output(Output const&) = delete;
  Output& operator=(Output const&) = delete;

  void Write(std::string_view bytes);
  void Flush();

  // Nobody reads any more, or the bytes cannot be written; further output is dropped.
  bool IsBroken() const { return error_ != 0; }
  // The `errno` of a write that failed, 0 for none; EPIPE when the reader went away.
  int Error() const { return error_; }

 private:
  // To some milliseconds, which costs less: it is looked at for each answer.
  static std::chrono::nanoseconds Now();

  int descriptor_;
  int error_ = 0;
  std::string buffer_;
  std::chrono::nanoseconds last_flush_ = Now();
};

// Bytes that a terminal would act on become escapes.
void AppendShown(std::string& out, std::string_view text);

// One message of the command itself: "gatotu: MESSAGE" with a line feed.
std::string ComplaintLine(std::string_view message);

// The same, to standard error.
void Complain(std::string_view message);

// All answers are written, `error` being what their output says of it. A reader that went away had
// what it wanted; other answers that are lost are complained about.
ExitStatus EndOfAnswers(int error);

}  // namespace gatotu::host
