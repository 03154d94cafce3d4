#include <unistd.h>

#include <climits>

#include "machine/live/sources.h"
#include "machine/live/text.h"
#include "machine/system_files.h"

namespace machine::live {
Fact<std::string> Names::HostName() const {
  if (root_.is_running()) {
    char name[HOST_NAME_MAX + 1] = {};
    if (::gethostname(name, HOST_NAME_MAX) != 0 || name[0] == '\0') {
      return AnnounceAbsence(Outcome::kAbsent, "gethostname");
    }
    std::string text = name;
    Announce("gethostname", Outcome::kAnswered, text.size());
    return text;
  }
  Fact<std::string> const kernel = root_.ReadText("/proc/sys/kernel/hostname");
  if (kernel) return kernel;
  return HostNameInFile(files_);
}

Fact<std::string> Names::ComputerName() const {
  if (Fact<std::string> const file = root_.ReadFile("/etc/machine-info")) {
    if (auto const value = FindValue(*file, "PRETTY_HOSTNAME", '=')) {
      if (std::string name = Unquote(*value); !name.empty()) return name;
    }
  }
  Fact<std::string> host = HostName();
  if (!host) return host;
  return host->substr(0, host->find('.'));
}

// Asked with every preference, and set once in a machine's life.
Fact<std::string> Names::HostIdentifier() const {
  Fact<std::string> const identity = root_.IdentityOf(kMachineIdPath);
  if (!identity) return identity;
  std::lock_guard lock(guard_);
  if (kept_identity_ == *identity) {
    Announce(kMachineIdPath, Outcome::kAnswered);
    return kept_identifier_;
  }
  Fact<std::string> identifier = MachineIdentifier(files_);
  if (identifier) {
    kept_identity_ = *identity;
    kept_identifier_ = *identifier;
  }
  return identifier;
}

}  // namespace machine::live
