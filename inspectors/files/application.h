// The applications below a folder, and those of the machine: in "/Applications" and in the folder
// "Applications" of every user's home, at any depth. Found are those that `AppFilter` adds.
#pragma once

#include <cstddef>
#include <vector>

#include "portable/file_location.h"
#include "portable_inspectors/descendant_iterator.h"
#include "portable_inspectors/filesystem_object.h"

// Every sequence ends with `NoSuchObject`. What may not be read is passed over; a folder of a
// recorded machine that nobody listed at the time throws `MacintoshPlatform::FileLoopFailed`.
class app_iterator {
 public:
  // Below a folder, found as they are wanted.
  filesystem_object First(folder const& start);
  filesystem_object Next(folder const& start);

  // The machine's. What a scan found holds for three minutes from its end; one that was interrupted
  // leaves what was found before for three minutes from its start. What is gone meanwhile is left
  // out.
  filesystem_object First();
  filesystem_object Next();

 private:
  void ScanForApps();

  descendant_iterator walk_;
  std::vector<FileLocation> apps_;
  std::size_t position_ = 0;  // in `apps_`
};

// The machine's first application of exactly that name, case included.
filesystem_object application_of_world(unsigned char const* name, unsigned long length);
