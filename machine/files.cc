#include "machine/files.h"

#include <cerrno>

namespace machine {
namespace {

Absence NotSupported() {
  Announce("files", Outcome::kNotSupported);
  return {Outcome::kNotSupported, "files", {}, ENOSYS};
}

// A machine whose files can be asked and not changed.
Absence Refused(std::string const& path) {
  Announce(path, Outcome::kNotSupported);
  return {Outcome::kNotSupported, path, "read-only", EROFS};
}

}  // namespace

Fact<ItemStatus> FileSource::Status(std::string const&, Links) const { return NotSupported(); }
Fact<Item> FileSource::Describe(std::string const&, Links) const { return NotSupported(); }
Fact<std::string> FileSource::ReadLink(std::string const&) const { return NotSupported(); }
Fact<std::unique_ptr<Folder>> FileSource::OpenFolder(std::string const&) const {
  return NotSupported();
}
Fact<std::unique_ptr<OpenFile>> FileSource::OpenFork(std::string const&, Fork, Access) const {
  return NotSupported();
}
Fact<std::string> FileSource::ReadFile(std::string const&, std::size_t) const {
  return NotSupported();
}
Fact<std::string> FileSource::CanonicalFolder(std::string const&) const { return NotSupported(); }
Fact<std::string> FileSource::WorkingFolder() const { return NotSupported(); }
Fact<VolumeSpace> FileSource::Space(std::string const&) const { return NotSupported(); }
Fact<std::string> FileSource::UserName(std::uint32_t) const { return NotSupported(); }
Fact<std::string> FileSource::GroupName(std::uint32_t) const { return NotSupported(); }

Fact<Done> FileSource::CreateFile(std::string const& path, std::uint32_t) const {
  return Refused(path);
}
Fact<Done> FileSource::CreateFolder(std::string const& path, std::uint32_t) const {
  return Refused(path);
}
Fact<Done> FileSource::Remove(std::string const& path) const { return Refused(path); }
Fact<Done> FileSource::Move(std::string const& from, std::string const&) const {
  return Refused(from);
}
Fact<Done> FileSource::Copy(std::string const&, std::string const& to) const { return Refused(to); }
Fact<Done> FileSource::Replace(std::string const& place, std::string const&) const {
  return Refused(place);
}
Fact<Done> FileSource::SetLocked(std::string const& path, bool) const { return Refused(path); }
Fact<Done> FileSource::SetFinderInfo(std::string const& path, FinderInfo const&) const {
  return Refused(path);
}
Fact<Done> FileSource::SetMode(std::string const& path, std::uint32_t) const {
  return Refused(path);
}
Fact<Done> FileSource::SetTimes(std::string const& path, FileTime const&, FileTime const&) const {
  return Refused(path);
}
Fact<UniqueFile> FileSource::MakeUniqueFile(std::string const& pattern) const {
  return Refused(pattern);
}
Fact<std::string> FileSource::MakeUniqueFolder(std::string const& pattern) const {
  return Refused(pattern);
}

}  // namespace machine
