// What is wrong with an expression or with its evaluation, as data; rendered here alone.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "evaluator/plugin/export.h"

namespace gatotu {

// A stretch of the expression's text. Line and column count from 1; column and length count
// characters of the UTF-8 text (a byte that is none counts as one), offset and size bytes.
struct Position {
  std::size_t offset = 0;
  std::size_t size = 0;
  unsigned line = 1;
  unsigned column = 1;
  unsigned length = 0;
};

struct Diagnostic {
  std::string code;     // stable, such as "unknown-property"; never translated
  std::string message;  // one line
  Position position;
  std::string suggestion;          // what was probably meant, empty when nothing is near
  std::vector<std::string> notes;  // further lines: what can be asked, reasons
};

// The position of `size` bytes from `offset` on in `text`.
GATOTU_API Position PositionIn(std::string_view text, std::size_t offset, std::size_t size);

// Bytes that a terminal would act on, line ends among them, as escapes.
GATOTU_API std::string PrintableText(std::string_view text);

// The message, the line it points into with its marks, and the suggestion and notes below; each
// line ends with a line feed. Bytes that a terminal would act on are shown as escapes.
GATOTU_API std::string Render(Diagnostic const& diagnostic, std::string_view text);

}  // namespace gatotu
