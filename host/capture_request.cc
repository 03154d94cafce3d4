#include "host/capture_request.h"

#include <charconv>
#include <limits>

namespace gatotu::host {

std::optional<std::uint64_t> ParseByteSize(std::string_view text) {
  constexpr std::string_view kUnits = "KMGT";
  std::uint64_t number = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return std::nullopt;
  std::string_view const unit(end, static_cast<std::size_t>(text.data() + text.size() - end));
  if (unit.empty()) return number;
  std::size_t const power = kUnits.find(unit.front());
  if (unit.size() > 1 || power == std::string_view::npos) return std::nullopt;
  std::size_t const shift = 10 * (power + 1);
  if (number > std::numeric_limits<std::uint64_t>::max() >> shift) return std::nullopt;
  return number << shift;
}

}  // namespace gatotu::host
