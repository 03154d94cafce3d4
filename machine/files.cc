#include "machine/files.h"

#include <algorithm>
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

Fact<std::size_t> Folder::ReadStart(std::string_view, void*, std::size_t) {
  return Absence{Outcome::kNotSupported, "files", {}, ENOSYS};
}

Fact<ItemStatus> FileSource::Status(std::string const&, Links) const { return NotSupported(); }
Fact<Item> FileSource::Describe(std::string const&, Links) const { return NotSupported(); }
Fact<std::string> FileSource::ReadLink(std::string const&) const { return NotSupported(); }
Fact<std::unique_ptr<Folder>> FileSource::OpenFolder(std::string const&) const {
  return NotSupported();
}
Fact<std::unique_ptr<OpenFile>> FileSource::OpenFork(std::string const& path, Fork,
                                                     Access access) const {
  return access == Access::kRead ? NotSupported() : Refused(path);
}
Fact<std::string> FileSource::CanonicalFolder(std::string const&) const { return NotSupported(); }
Fact<std::string> FileSource::WorkingFolder() const { return NotSupported(); }
Fact<VolumeSpace> FileSource::Space(std::string const&) const { return NotSupported(); }
Fact<std::string> FileSource::UserName(std::uint32_t) const { return NotSupported(); }
Fact<std::string> FileSource::GroupName(std::uint32_t) const { return NotSupported(); }

namespace {

Absence RefuseLength(std::string const& path, std::size_t most) {
  std::string source = path + " (more than " + std::to_string(most) + " bytes)";
  Announce(source, Outcome::kMalformed);
  return {Outcome::kMalformed, std::move(source), {}, EFBIG};
}

}  // namespace

Fact<std::string> ReadWhole(OpenFile& file, std::string const& path, std::size_t most) {
  // A file with holes may tell any size, and its content is not read in vain. Files of /proc do not
  // tell theirs, and others grow: read on until there is no more.
  Fact<std::uint64_t> const size = file.Size();
  std::uint64_t const expected = size ? *size : 0;
  if (expected > most) return RefuseLength(path, most);
  std::string text;
  for (std::size_t step = static_cast<std::size_t>(expected) + 1;; step = std::size_t{1} << 16) {
    std::size_t const had = text.size();
    text.resize(had + step);
    Fact<std::size_t> const got = file.ReadAt(had, text.data() + had, step);
    if (!got) return got.absence();
    text.resize(had + *got);
    if (text.size() > most) return RefuseLength(path, most);
    if (*got < step) return text;
  }
}

Fact<std::string> FileSource::ReadFile(std::string const& path, std::size_t most) const {
  auto file = OpenFork(path, Fork::kData, Access::kRead);
  if (!file) return file.absence();
  return ReadWhole(**file, path, most);
}

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
