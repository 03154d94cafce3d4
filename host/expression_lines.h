// Expressions of a file, a pipe or a terminal, one a line.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace gatotu::host {

// Whether a line asks nothing: blank, or a `//` comment alone.
bool IsIdleLine(std::string_view line);

class ExpressionLines {
 public:
  // `descriptor` stays the caller's.
  explicit ExpressionLines(int descriptor) : descriptor_(descriptor) {}

  enum class Result {
    kLine,
    kEnd,
    kInterrupted,  // a signal came while waiting
    kFailed,       // see `Error`
  };

  // The next line, any bytes but its line feed. What a line has beyond the longest text the
  // evaluator accepts is skipped but for one byte, so that it is refused as too long and the
  // memory stays bounded.
  Result Next(std::string& line);

  int Error() const { return error_; }

 private:
  bool Fill(Result& result);

  int descriptor_;
  int error_ = 0;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  char buffer_[16384];
};

}  // namespace gatotu::host
