// The registry of a Linux machine: its devices as the kernel and the firmware tell of them.
#pragma once

#include "machine/live/registry_folders.h"

namespace machine::live {

class Registry final : public RegistrySource {
 public:
  explicit Registry(SharedRoot root) : root_(std::move(root)) {}
  Fact<SharedRegistryNode> Root() const override;
  Fact<SharedRegistryNode> NodeAt(std::string_view plane, std::string_view path) const override;

 private:
  SharedRoot const root_;
};

}  // namespace machine::live
