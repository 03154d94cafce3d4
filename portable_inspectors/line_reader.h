// The lines of a file, in memory that the longest of them determines.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "portable_inspectors/file_stream.h"

// Lines end as those of a string do (`TakeLine`).
class LineReader {
 public:
  LineReader() = default;
  explicit LineReader(FileStream stream) : stream_(std::move(stream)) {}

  // Without its end, valid until the next call; none after the last. `FileTooLarge` for a line of
  // more than `kMostContentBytes`.
  std::optional<std::string_view> Next();

 private:
  // Where a mark stands next in the buffer; what was searched is not searched again.
  class MarkFinder {
   public:
    explicit MarkFinder(char mark) : mark_(mark) {}
    // `end` where there is none from `begin` on.
    std::size_t Find(std::string const& buffer, std::size_t begin, std::size_t end);
    void Shift(std::size_t removed) { found_ -= std::min(removed, found_); }

   private:
    char mark_;
    std::size_t found_ = 0;  // there is none between where the last search began and here
  };

  bool Fill();

  FileStream stream_;
  std::string buffer_;
  std::size_t begin_ = 0, end_ = 0;  // what is not yet handed out
  bool has_ended_ = false;           // the file; the buffer may hold more
  MarkFinder line_feed_{'\n'}, carriage_return_{'\r'};
};
