// Which machine is asked.
#pragma once

#include <memory>
#include <string>

#include "machine/machine.h"

namespace gatotu::host {

// "live", or a capture's folder with the user whose home "~" is there (empty: the one it names).
machine::Fact<std::shared_ptr<machine::Machine const>> OpenMachine(std::string const& name,
                                                                   std::string const& user);

}  // namespace gatotu::host
