#include "host/passed_output.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

namespace gatotu::host {
namespace {

constexpr int kLookAgainMilliseconds = 100;

}  // namespace

void PassedOutput::Write(std::string_view bytes) {
  while (!bytes.empty() && !IsBroken()) {
    if (!WaitForRoom()) continue;
    // As much as a pipe that has room takes without making us wait.
    ssize_t const written =
        ::write(descriptor_, bytes.data(), std::min<std::size_t>(bytes.size(), PIPE_BUF));
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR && errno != EAGAIN) {
      error_ = errno;
    }
  }
}

bool PassedOutput::WaitForRoom() {
  pollfd ready[] = {{descriptor_, POLLOUT, 0}, {interruption_.Descriptor(), POLLIN, 0}};
  int const timeout = interruption_.HasCome() ? kLookAgainMilliseconds : -1;
  if (::poll(ready, 2, timeout) < 0) return false;
  if (ready[1].revents != 0) interruption_.Look();
  if (ready[0].revents == 0 && interruption_.IsOver()) error_ = EINTR;
  return ready[0].revents != 0;
}

void PassedOutput::NoteReaderIsGone() {
  if (error_ == 0) error_ = EPIPE;
}

}  // namespace gatotu::host
