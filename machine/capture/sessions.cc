#include "machine/capture/sessions.h"

namespace machine::capture {

Fact<RecordDictionary> Sessions::ConsoleUser() const {
  return facts_.Ask("ConsoleUser", [](Field const& field) -> Fact<RecordDictionary> {
    auto const* entries = field.As<RecordDictionary>();
    if (entries == nullptr) return field.Malformed("not a dictionary");
    return *entries;
  });
}

}  // namespace machine::capture
