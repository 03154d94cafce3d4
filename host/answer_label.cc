#include "host/answer_label.h"

#include <algorithm>

namespace gatotu::host {

std::string EachLineAfter(std::string_view lead, std::string_view lines) {
  std::string result;
  while (!lines.empty()) {
    std::size_t const length = std::min(lines.find('\n'), lines.size() - 1) + 1;
    result += lead;
    result += lines.substr(0, length);
    lines.remove_prefix(length);
  }
  return result;
}

}  // namespace gatotu::host
