#include "host/output.h"

#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "evaluator/diagnostic.h"

namespace gatotu::host {
namespace {

// Large, since a reader that pauses must not use up the time of the evaluation.
constexpr std::size_t kFlushSize = std::size_t{1} << 20;
constexpr std::chrono::milliseconds kFlushInterval{250};

}  // namespace

std::chrono::nanoseconds Output::Now() {
  timespec now = {};
  ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

void Output::Write(std::string_view bytes) {
  if (IsBroken()) return;
  buffer_ += bytes;
  if (buffer_.size() >= kFlushSize || Now() - last_flush_ >= kFlushInterval) Flush();
}

void Output::Flush() {
  std::string_view rest = buffer_;
  while (!rest.empty() && !IsBroken()) {
    ssize_t const written = ::write(descriptor_, rest.data(), rest.size());
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      error_ = errno;
    }
  }
  buffer_.clear();
  last_flush_ = Now();
}

void AppendShown(std::string& out, std::string_view text) {
  constexpr char kHex[] = "0123456789abcdef";
  for (char const c : text) {
    auto const byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7f) {
      out += {'\\', 'x', kHex[byte >> 4U], kHex[byte & 15U]};
    } else {
      out += c;
    }
  }
}

std::string ComplaintLine(std::string_view message) {
  return "gatotu: " + PrintableText(message) + '\n';
}

void Complain(std::string_view message) {
  Output errors(STDERR_FILENO);
  errors.Write(ComplaintLine(message));
  errors.Flush();
}

ExitStatus EndOfAnswers(int error) {
  if (error == 0 || error == EPIPE) return ExitStatus::kAnswered;
  Complain(std::string("standard output: ") + std::strerror(error));
  return ExitStatus::kNoAnswer;
}

}  // namespace gatotu::host
