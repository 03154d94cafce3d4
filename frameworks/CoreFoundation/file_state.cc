#include "frameworks/CoreFoundation/file_state.h"

#include <chrono>
#include <tuple>
#include <utility>

#include "machine/machine.h"

namespace {

// Whether the step of time that a change fell into is over. Stamps are given by the kernel that
// runs this process, whatever machine the files tell of, and so is the clock that they are compared
// with. A file system that keeps whole seconds shows no nanoseconds.
bool IsPast(machine::FileTime const& change) {
  using namespace std::chrono;
  auto const step = change.nanoseconds == 0 ? milliseconds(2000) : milliseconds(50);
  auto const now = duration_cast<nanoseconds>(system_clock::now().time_since_epoch() - step);
  return std::pair(change.seconds, std::int64_t{change.nanoseconds}) <
         std::pair(std::int64_t{now / seconds(1)}, std::int64_t{(now % seconds(1)).count()});
}

}  // namespace

std::optional<FileState> FileState::Of(std::string const& path) {
  auto const status = machine::CurrentMachine().Files().Status(path, machine::Links::kFollow);
  if (!status) return std::nullopt;
  return FileState{.kind = status->kind,
                   .device = status->device,
                   .inode = status->inode,
                   .bytes = status->bytes,
                   .modification = status->modification,
                   .change = status->change,
                   .is_settled = IsPast(status->change)};
}

bool FileState::operator==(FileState const& other) const {
  auto const parts = [](FileState const& state) {
    return std::tuple(state.kind, state.device, state.inode, state.bytes,
                      state.modification.seconds, state.modification.nanoseconds,
                      state.change.seconds, state.change.nanoseconds);
  };
  return parts(*this) == parts(other);
}
