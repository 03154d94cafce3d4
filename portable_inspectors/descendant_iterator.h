// Everything below a folder: depth first, a folder before what lies in it. Links are items and not
// entered, nor is a folder that lies in itself. However many files there are, memory grows with the
// depth alone.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "machine/files.h"
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

  // Forgets the walk and its start locations.
  void Init();
  // The start locations are walked in the order they were added, each without itself. One that is
  // no folder, does not exist or may not be read has nothing below it.
  void AddLocation(FileLocation const& location);
  // The next item that the filter adds; `NoSuchObject` at the end. A file error in the filter skips
  // the item that it was asked about.
  FileItem NextWithFilter(Filter filter);

  // All that lies below one folder, which must be readable: see `filesystem_object_iterator`.
  filesystem_object First(folder const& start);
  filesystem_object Next(folder const& start);

 private:
  struct Level {
    std::unique_ptr<machine::Folder> open;
    std::size_t path_size;
  };

  bool Advance();
  bool ReadLevel();
  void Enter(std::unique_ptr<machine::Folder> open);
  machine::Fact<std::unique_ptr<machine::Folder>> OpenItem();
  void EnterItem();
  bool EnterNextStart();

  std::vector<std::string> starts_;
  std::size_t next_start_ = 0;
  std::vector<Level> levels_;  // the start first
  std::string path_;           // of the current item
  bool is_folder_ = false;     // the current item, and is to be entered
};
