#include "portable_inspectors/line_reader.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t kBufferSize = 64 * 1024;

}  // namespace

std::size_t LineReader::MarkFinder::Find(std::string const& buffer, std::size_t begin,
                                         std::size_t end) {
  found_ = std::max(found_, begin);
  if (found_ == end || buffer[found_] == mark_) return found_;
  void const* const mark = std::memchr(buffer.data() + found_, mark_, end - found_);
  found_ = mark == nullptr
               ? end
               : static_cast<std::size_t>(static_cast<char const*>(mark) - buffer.data());
  return found_;
}

std::optional<std::string_view> LineReader::Next() {
  for (;;) {
    std::size_t const end = std::min(line_feed_.Find(buffer_, begin_, end_),
                                     carriage_return_.Find(buffer_, begin_, end_));
    // Behind a carriage return, a line feed may follow that is not yet here.
    bool const is_whole = end < end_ && (buffer_[end] == '\n' || end + 1 < end_);
    if (!is_whole && !has_ended_) {
      has_ended_ = !Fill();
      continue;
    }
    if (begin_ == end_) return std::nullopt;
    std::string_view const line(buffer_.data() + begin_, end - begin_);
    begin_ = std::min(end + 1, end_);
    if (begin_ < end_ && buffer_[end] == '\r' && buffer_[begin_] == '\n') ++begin_;
    return line;
  }
}

// False at the end of the file.
bool LineReader::Fill() {
  if (begin_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    line_feed_.Shift(begin_);
    carriage_return_.Shift(begin_);
    end_ -= std::exchange(begin_, 0);
  }
  if (end_ == buffer_.size()) {
    if (end_ > kMostContentBytes) throw FileTooLarge(ConstData(stream_.Path()));
    // The end of a line is two bytes at most.
    bool const is_last_room = end_ >= kMostContentBytes / 2;
    buffer_.resize(is_last_room ? kMostContentBytes + 2 : std::max(2 * end_, kBufferSize));
  }
  std::size_t const size = stream_.Read(buffer_.data() + end_, buffer_.size() - end_);
  end_ += size;
  return size > 0;
}
