// The files of a Linux machine below its root.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "machine/files.h"
#include "machine/live/root.h"

namespace machine::live {

class Files final : public FileSource {
 public:
  Files(Root const& root, bool is_read_only) : root_(root), is_read_only_(is_read_only) {}

  Fact<ItemStatus> Status(std::string const& path, Links links) const override;
  Fact<Item> Describe(std::string const& path, Links links) const override;
  Fact<std::string> ReadLink(std::string const& path) const override;
  Fact<std::unique_ptr<Folder>> OpenFolder(std::string const& path) const override;
  Fact<std::unique_ptr<OpenFile>> OpenFork(std::string const& path, Fork fork,
                                           Access access) const override;
  Fact<std::string> CanonicalFolder(std::string const& path) const override;
  Fact<std::string> WorkingFolder() const override;
  Fact<VolumeSpace> Space(std::string const& path) const override;
  Fact<std::string> UserName(std::uint32_t user) const override;
  Fact<std::string> GroupName(std::uint32_t group) const override;

  bool is_read_only() const override { return is_read_only_; }
  Fact<Done> CreateFile(std::string const& path, std::uint32_t mode) const override;
  Fact<Done> CreateFolder(std::string const& path, std::uint32_t mode) const override;
  Fact<Done> Remove(std::string const& path) const override;
  Fact<Done> Move(std::string const& from, std::string const& to) const override;
  Fact<Done> Copy(std::string const& from, std::string const& to) const override;
  Fact<Done> Replace(std::string const& place, std::string const& replacement) const override;
  Fact<Done> SetLocked(std::string const& path, bool locked) const override;
  Fact<Done> SetFinderInfo(std::string const& path, FinderInfo const& info) const override;
  Fact<Done> SetMode(std::string const& path, std::uint32_t mode) const override;
  Fact<Done> SetTimes(std::string const& path, FileTime const& access,
                      FileTime const& modification) const override;
  Fact<UniqueFile> MakeUniqueFile(std::string const& pattern) const override;
  Fact<std::string> MakeUniqueFolder(std::string const& pattern) const override;

 private:
  bool IsLink(std::string const& path) const;
  // The path that a link leads to, without links; empty with `errno` set.
  std::string Resolve(std::string const& path) const;
  Fact<std::unique_ptr<OpenFile>> OpenResourceFork(std::string const& path) const;
  Fact<std::string> NameInList(char const* list, std::uint32_t number) const;
  // Looks at `path` anew and lets `change` work on it; false there means `errno` is set.
  template <typename Change>
  Fact<Done> ChangeItem(std::string const& path, Change&& change) const;

  Root const& root_;
  bool const is_read_only_;
};

// Why nothing is changed here; announced.
Absence RefuseChange(std::string path);

}  // namespace machine::live
