// The files of a capture: copies below its root, and over them what `machine.plist` tells of them.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "machine/capture/facts.h"
#include "machine/capture/recorded_files.h"
#include "machine/capture/recorded_item.h"
#include "machine/files.h"

namespace machine::capture {

class Files final : public FileSource {
 public:
  // All borrowed. `copies` never leaves the capture's root.
  Files(Facts const& facts, FileSource const& copies)
      : facts_(facts), records_(facts), copies_(copies) {}

  Fact<ItemStatus> Status(std::string const& path, Links links) const override;
  Fact<Item> Describe(std::string const& path, Links links) const override;
  Fact<std::string> ReadLink(std::string const& path) const override;
  Fact<std::unique_ptr<Folder>> OpenFolder(std::string const& path) const override;
  Fact<std::unique_ptr<OpenFile>> OpenFork(std::string const& path, Fork fork,
                                           Access access) const override;
  Fact<std::string> ReadFile(std::string const& path, std::size_t most) const override;
  Fact<std::string> CanonicalFolder(std::string const& path) const override;
  Fact<VolumeSpace> Space(std::string const& path) const override;
  Fact<std::string> UserName(std::uint32_t user) const override;
  Fact<std::string> GroupName(std::uint32_t group) const override;

  // For the folders of this source and for walks. Paths are without links; nothing is announced.

  // At least `wanted` of an item, an absence where less than that is recorded.
  Fact<RecordedItem> ItemAt(std::string const& path, Known wanted) const;
  // What was recorded of an item over what its copy says.
  Fact<RecordedItem> Over(std::string const& path, RecordedItem copy) const;
  Fact<std::string> TargetAt(std::string const& path) const;
  // Nothing where no parts of a content were recorded.
  std::optional<Fact<RecordedParts>> PartsAt(std::string const& path) const;
  Fact<std::unique_ptr<Folder>> OpenFolderAt(std::string const& path) const;

 private:
  Fact<std::string> Walk(std::string const& path, Links links) const;
  // What a path leads to, announced by that path.
  Fact<RecordedItem> Find(std::string const& path, Links links, Known wanted) const;
  Fact<Item> CopyAt(std::string const& path, Known wanted) const;
  Absence NotRecorded(std::string const& path) const;
  Fact<std::string> NameInList(char const* key, char const* list, std::uint32_t number) const;

  Facts const& facts_;
  RecordedFiles const records_;
  FileSource const& copies_;
};

// A folder as it was listed when it was recorded.
std::unique_ptr<Folder> MakeListedFolder(Files const& files, std::string path,
                                         ItemStatus const& status, RecordedListing listing);
// A copy's folder.
std::unique_ptr<Folder> MakeOverlaidFolder(Files const& files, std::string path,
                                           ItemStatus const& status, std::unique_ptr<Folder> copy);

}  // namespace machine::capture
