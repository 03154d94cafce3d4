// The contents of a folder, in the folder's own order.
#pragma once

#include <memory>
#include <string>

#include "frame/of.h"
#include "machine/files.h"
#include "portable/const_data.h"
#include "portable_inspectors/filesystem_object.h"

// Every `First` begins anew; `First` and `Next` throw `NoSuchObject` at the end. A folder that may
// not be read throws `MacintoshPlatform::FileLoopFailed`. Links are files.
class GATOTU_API filesystem_object_iterator {
 public:
  filesystem_object First(Of, folder const& parent);
  filesystem_object Next(Of, folder const& parent);
  file FirstFile(Of, folder const& parent);
  file NextFile(Of, folder const& parent);
  folder FirstFolder(Of, folder const& parent);
  folder NextFolder(Of, folder const& parent);

 private:
  enum class Wanted { kAll, kFiles, kFolders };

  void Open(folder const& parent);
  std::string NextPath(Wanted wanted);

  std::string path_;
  std::unique_ptr<machine::Folder> open_;
};
