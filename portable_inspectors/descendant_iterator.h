// Everything below a folder: depth first, a folder before what lies in it. Links are items and not
// entered, nor is a folder that lies in itself. However many files there are, memory grows with the
// depth alone.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/files.h"
#include "portable/const_data.h"
#include "portable/file_item.h"
#include "portable_inspectors/filesystem_object.h"

//   walk.Init();
//   walk.AddLocation(start);
//   for (;;) Use(walk.NextWithFilter(Filter));  // until `NoSuchObject`
//
// A folder below that may not be read, or vanishes, is passed over; the machine announces why.
class GATOTU_API descendant_iterator {
 public:
  enum DescendAndAddFlags : int {
    kSkip = 0,
    kDescend = 1,
    kAdd = 2,
    kAddAndDescend = kAdd | kDescend,
  };
  using Filter = DescendAndAddFlags (*)(FileItem const& item);

  // What an entry and the first bytes tell, long before a `FileItem` is made. A file is whatever is
  // no folder; a link is what it leads to, and none to a folder comes this far.
  struct Glimpse {
    std::string_view name;
    bool is_folder = false;
    ConstData start;  // of a file: its first bytes, up to `kStartBytes`
  };
  static constexpr std::size_t kStartBytes = 32;
  // `kSkip` or `kDescend`, or nothing where the filter is to be asked.
  using Glance = std::optional<DescendAndAddFlags> (*)(Glimpse const& glimpse);

  // Forgets the walk and its start locations.
  void Init();
  // The start locations are walked in the order they were added, each without itself. One that is
  // no folder, does not exist or may not be read has nothing below it; only what is not recorded of
  // a recorded machine, here and below, throws `MacintoshPlatform::FileLoopFailed`.
  void AddLocation(FileLocation const& location);
  // The next item that the filter adds; `NoSuchObject` at the end. A file error in the filter skips
  // the item that it was asked about. A glance spares the filter most items, where it knows what
  // the filter would say; a file that cannot be read is skipped without either.
  FileItem NextWithFilter(Filter filter, Glance glance = nullptr);

  // All that lies below one folder, which must be readable: see `filesystem_object_iterator`.
  filesystem_object First(folder const& start);
  filesystem_object Next(folder const& start);

 private:
  struct Level {
    std::unique_ptr<machine::Folder> open;
    std::size_t path_size;
  };

  bool Advance();
  DescendAndAddFlags Ask(Filter filter, FileItem& item);
  std::optional<DescendAndAddFlags> GlanceAtItem(Glance glance);
  machine::Fact<std::size_t> ReadStart(unsigned char* buffer);
  template <typename Open>
  auto WithFreeFiles(Open const& open);
  bool ReadLevel();
  void Enter(std::unique_ptr<machine::Folder> open);
  void EnterItem();
  bool EnterNextStart();

  std::vector<std::string> starts_;
  std::size_t next_start_ = 0;
  std::vector<Level> levels_;  // the start first
  std::string path_;           // of the current item
  machine::ItemKind kind_ = machine::ItemKind::kOther;
  bool is_to_be_entered_ = false;
};
