// The components registered with the system.
#pragma once

#include <cstdint>
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

class MACHINE_API ComponentSource {
 public:
  virtual ~ComponentSource() = default;
  virtual Fact<std::vector<Component>> Components() const;
};

}  // namespace machine
