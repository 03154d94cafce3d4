// Collects what is wrong with one text, up to a bound.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "evaluator/diagnostic.h"

namespace gatotu {

// A stretch of the text in bytes: what tokens and nodes carry until a position is asked for.
struct Span {
  std::size_t offset = 0;
  std::size_t size = 0;

  std::size_t End() const { return offset + size; }
};

inline Span Covering(Span first, Span last) { return {first.offset, last.End() - first.offset}; }

class Diagnostics {
 public:
  static constexpr std::size_t kMost = 20;

  explicit Diagnostics(std::string_view text) : text_(text) {}

  // What does not fit within the bound is dropped; the errors that stand first are kept.
  void Report(std::string_view code, Span span, std::string message, std::string suggestion = {},
              std::vector<std::string> notes = {}) {
    if (list_.size() >= kMost) return;
    list_.push_back({std::string(code), std::move(message),
                     PositionIn(text_, span.offset, span.size), std::move(suggestion),
                     std::move(notes)});
  }

  bool IsEmpty() const { return list_.empty(); }
  bool IsFull() const { return list_.size() >= kMost; }
  // In the order of the text.
  std::vector<Diagnostic> Take();

 private:
  std::string_view text_;
  std::vector<Diagnostic> list_;
};

}  // namespace gatotu
