#include <algorithm>

#include "machine/capture/sources.h"
#include "machine/capture/text_record.h"

namespace machine::capture {
namespace {

constexpr char kKey[] = "Gestalt";

Fact<GestaltResponse> ResponseIn(Field const& field) {
  if (field.As<std::int64_t>() == nullptr) {
    Fact<std::string> text = field.Text();
    if (!text) return field.Malformed("neither an integer nor a string");
    return GestaltResponse(*std::move(text));
  }
  // The interface is signed, its values are mostly not.
  Fact<std::int64_t> const number = field.Integer(INT32_MIN, UINT32_MAX);
  if (!number) return number.absence();
  return GestaltResponse(static_cast<std::uint32_t>(*number));
}

}  // namespace

Fact<GestaltResponse> Gestalt::Response(std::uint32_t selector) const {
  std::string const key = KeyOfSelector(selector);
  if (facts_.Knows(kKey, key)) return facts_.Ask(kKey, key, ResponseIn);
  return derived_.Response(selector);
}

Fact<std::vector<std::uint32_t>> Gestalt::Selectors() const {
  Fact<std::vector<std::uint32_t>> selectors = derived_.Selectors();
  auto const* responses = facts_[kKey].As<RecordDictionary>();
  if (!selectors || responses == nullptr) return selectors;
  for (auto const& [key, value] : responses->entries()) {
    std::string const bytes = BytesOfKey(key);
    if (bytes.size() != 4) continue;
    std::uint32_t selector = 0;
    for (unsigned char byte : bytes) selector = selector << 8 | byte;
    selectors.value().push_back(selector);
  }
  return selectors;
}

}  // namespace machine::capture
