// The files of some other Linux machine below a temporary folder.
#pragma once

#include <memory>
#include <string>

#include "machine/machine.h"
#include "tests/support/temporary_folder.h"

class RecordedTree : public gatotu::tests::TemporaryFolder {
 public:
  std::string At(std::string const& path) const { return Path() + path; }

  std::shared_ptr<machine::Machine const> Machine() const {
    return machine::MakeLiveMachine(Path());
  }
};
