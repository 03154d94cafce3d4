// The components of a capture: "Components", an array of dictionaries.
#pragma once

#include <mutex>
#include <optional>
#include <vector>

#include "machine/capture/facts.h"
#include "machine/components.h"

namespace machine::capture {

inline constexpr char kComponents[] = "Components";

// Understood once: a capture does not change. What was left out is said each time.
class RegisteredComponents final : public ComponentSource {
 public:
  explicit RegisteredComponents(Facts const& facts) : facts_(facts) {}
  Fact<SharedComponents> Components() const override;

 private:
  Facts const& facts_;
  mutable std::once_flag is_read_;
  mutable std::optional<Fact<SharedComponents>> components_;
  mutable std::vector<Absence> left_out_;
};

Record RecordOf(std::vector<Component> const& components);

}  // namespace machine::capture
