#include "frameworks/CoreFoundation/item_identity.h"

#include <chrono>
#include <tuple>

namespace {

// Twice the longest that the kernel's clock for files stands still.
constexpr std::chrono::milliseconds kUnsettled(20);

bool IsSettled(machine::FileTime const& change) {
  auto const time = std::chrono::seconds(change.seconds) +
                    std::chrono::nanoseconds(std::int64_t{change.nanoseconds});
  auto const age = std::chrono::system_clock::now().time_since_epoch() - time;
  return age > kUnsettled || age < -kUnsettled;
}

auto PartsOf(machine::ItemStatus const& status) {
  return std::tuple(status.device, status.inode, status.bytes, status.modification.seconds,
                    status.modification.nanoseconds, status.change.seconds,
                    status.change.nanoseconds);
}

}  // namespace

ItemIdentity::ItemIdentity(machine::ItemStatus const& status)
    : status_(status), is_settled_(IsSettled(status.change)) {}

bool ItemIdentity::StillHolds(machine::ItemStatus const& status) const {
  return is_settled_ && PartsOf(status_) == PartsOf(status);
}
