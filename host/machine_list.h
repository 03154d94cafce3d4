// The machines to be asked, in order: those of the command line, then those of a file, a line each.
// The file is read as they are wanted, so that it may be long, or a pipe that is still being
// filled.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/file_descriptor.h"

namespace gatotu::host {

class MachineList {
 public:
  explicit MachineList(std::vector<std::string> names) : names_(std::move(names)) {}

  // The rest is read from `file`, where "-" is standard input. The answer is why it cannot be.
  std::optional<std::string> ReadFrom(std::string const& file);

  enum class Result {
    kMachine,
    kLater,  // the next one is not written yet: wait until the descriptor can be read
    kEnd,
  };
  // Does not wait. Lines that are blank or begin with "#" name none; what stands in the others is
  // a folder, whatever bytes its name has.
  Result Next(std::string& name);

  int Descriptor() const { return descriptor_; }
  // Why the end came too early.
  std::optional<std::string> const& Failure() const { return failure_; }

 private:
  Result Fill();
  bool TakeLine(std::string& line);

  std::vector<std::string> names_;
  std::size_t next_ = 0;
  std::string file_;
  machine::FileDescriptor opened_;
  int descriptor_ = -1;  // -1: there is no more to be read
  std::string unread_;
  std::string line_;  // as much of the next as there is
  std::optional<std::string> failure_;
};

}  // namespace gatotu::host
