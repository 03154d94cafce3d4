#include "host/expression_lines.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace gatotu::host {
namespace {

constexpr std::size_t kLongestLine = (std::size_t{1} << 20) + 1;

}  // namespace

bool IsIdleLine(std::string_view line) {
  std::size_t const begin = line.find_first_not_of(" \t\r\v\f");
  return begin == std::string_view::npos || line.substr(begin).starts_with("//");
}

bool ExpressionLines::Fill(Result& result) {
  ssize_t const got = ::read(descriptor_, buffer_, sizeof buffer_);
  if (got > 0) {
    begin_ = 0;
    end_ = static_cast<std::size_t>(got);
    return true;
  }
  if (got == 0) {
    result = Result::kEnd;
  } else if (errno == EINTR) {
    result = Result::kInterrupted;
  } else {
    error_ = errno;
    result = Result::kFailed;
  }
  return false;
}

ExpressionLines::Result ExpressionLines::Next(std::string& line) {
  line.clear();
  for (bool begun = false;; begun = true) {
    Result result = Result::kEnd;
    if (begin_ == end_ && !Fill(result)) {
      // The last line may lack its line feed.
      return result == Result::kEnd && begun ? Result::kLine : result;
    }
    std::string_view const rest(buffer_ + begin_, end_ - begin_);
    std::size_t const length = std::min(rest.find('\n'), rest.size());
    line += rest.substr(0, std::min(length, kLongestLine - line.size()));
    begin_ += length;
    if (begin_ < end_) {
      ++begin_;
      return Result::kLine;
    }
  }
}

}  // namespace gatotu::host
