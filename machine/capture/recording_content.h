// Contents of files that are asked through a recorder.
#pragma once

#include <memory>
#include <string>

#include "machine/capture/recording.h"

namespace machine::capture {

struct RecordedPlace {
  std::string path, place;  // as it was asked, and where that leads
  Fork fork;
};

// Remembers all of an open file at once, or what is read of it where that may be little. The items
// are borrowed.
Fact<std::unique_ptr<OpenFile>> RecordContent(RecordedItems& items, RecordedPlace place,
                                              std::unique_ptr<OpenFile> asked);

}  // namespace machine::capture
