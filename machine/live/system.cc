#include <sys/utsname.h>

#include <algorithm>

#include "machine/live/sources.h"

namespace machine::live {

Fact<SystemVersion> System::Version() const {
  Fact<Platform> const platform = SystemPlatform();
  // Its version is in a property list, which this machine does not read.
  if (platform && *platform == Platform::kMacOS) {
    return AnnounceAbsence(Outcome::kNotSupported, kSystemVersionPath, "property list");
  }
  Fact<SystemVersion> version = VersionInOsRelease(files_);
  if (!version) return version;
  auto const is_build = [](auto const& entry) { return entry.first == "ProductBuildVersion"; };
  if (std::none_of(version->begin(), version->end(), is_build)) {
    if (Fact<std::string> release = KernelRelease()) {
      version.value().emplace_back("ProductBuildVersion", *std::move(release));
    }
  }
  utsname names;
  if (root_.is_running() && ::uname(&names) == 0) {
    Announce("uname", Outcome::kAnswered);
    version.value().emplace_back("Architecture", names.machine);
  }
  return version;
}

Fact<std::string> System::KernelRelease() const {
  if (!root_.is_running()) return root_.ReadText("/proc/sys/kernel/osrelease");
  utsname names;
  if (::uname(&names) != 0) return AnnounceError(errno, "uname");
  std::string release = names.release;
  Announce("uname", Outcome::kAnswered, release.size());
  return release;
}

}  // namespace machine::live
