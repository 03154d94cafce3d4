// Gestalt responses that follow from a machine's other sources.
#pragma once

#include "machine/machine.h"

namespace machine {

// A selector that the table here does not list, or whose source has no value, is undefined.
class MACHINE_API DerivedGestalt final : public GestaltSource {
 public:
  // The machine is borrowed and outlives this.
  explicit DerivedGestalt(Machine const& machine) : machine_(machine) {}

  Fact<GestaltResponse> Response(std::uint32_t selector) const override;
  Fact<std::vector<std::uint32_t>> Selectors() const override;

 private:
  Machine const& machine_;
};

}  // namespace machine
