// The components registered with the system.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "machine/export.h"
#include "machine/fact.h"

namespace machine {

struct Component {
  std::uint32_t type = 0, subtype = 0, maker = 0;  // four characters, the first one highest
  std::optional<std::string> name, info;           // at most 255 bytes each
  std::optional<std::uint32_t> version;            // none: it cannot be opened
};

// Shared, since there may be many and each step of a walk over them asks anew.
using SharedComponents = std::shared_ptr<std::vector<Component> const>;

class MACHINE_API ComponentSource {
 public:
  virtual ~ComponentSource() = default;
  // Never null.
  virtual Fact<SharedComponents> Components() const;
};

}  // namespace machine
