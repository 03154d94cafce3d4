#include "host/machine_list.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace gatotu::host {
namespace {

// No path is as long, so that what is left out of a line changes no answer.
constexpr std::size_t kLongestName = 8192;

bool NamesNone(std::string_view line) {
  return line.starts_with('#') || line.find_first_not_of(" \t\r\v\f") == std::string_view::npos;
}

}  // namespace

std::optional<std::string> MachineList::ReadFrom(std::string const& file) {
  file_ = file == "-" ? "standard input" : file;
  descriptor_ = STDIN_FILENO;
  if (file == "-") return std::nullopt;
  opened_ = machine::FileDescriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  descriptor_ = opened_.number();
  if (!opened_.is_open()) return file + ": " + std::strerror(errno);
  return std::nullopt;
}

MachineList::Result MachineList::Next(std::string& name) {
  if (next_ < names_.size()) {
    name = names_[next_++];
    return Result::kMachine;
  }
  for (;;) {
    while (TakeLine(name)) {
      if (NamesNone(name)) continue;
      // A folder of that name is no reason to ask the machine at hand.
      if (name == "live") name = "./live";
      return Result::kMachine;
    }
    if (descriptor_ < 0) return Result::kEnd;
    if (Fill() == Result::kLater) return Result::kLater;
  }
}

bool MachineList::TakeLine(std::string& line) {
  std::size_t const length = std::min(unread_.find('\n'), unread_.size());
  line_.append(unread_, 0, std::min(length, kLongestName - line_.size()));
  bool const is_whole = length < unread_.size();
  unread_.erase(0, length + 1);
  // The last line may lack its line feed.
  if (!is_whole && (descriptor_ >= 0 || line_.empty())) return false;
  line = std::exchange(line_, {});
  return true;
}

MachineList::Result MachineList::Fill() {
  pollfd ready = {descriptor_, POLLIN, 0};
  if (::poll(&ready, 1, 0) == 0) return Result::kLater;
  std::array<char, 16384> buffer;
  ssize_t const got = ::read(descriptor_, buffer.data(), buffer.size());
  if (got > 0) {
    unread_.assign(buffer.data(), static_cast<std::size_t>(got));
    return Result::kMachine;
  }
  if (got < 0 && (errno == EINTR || errno == EAGAIN)) return Result::kLater;
  if (got < 0) failure_ = file_ + ": " + std::strerror(errno);
  descriptor_ = -1;
  return Result::kEnd;
}

}  // namespace gatotu::host
