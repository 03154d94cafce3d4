// Machines that were recorded: a folder with `machine.plist` and the files it speaks of, or simply
// the root of a macOS volume, which is a capture that has only files.
//
// A capture is read-only and hostile: whatever it holds, no path leads out of its folder. Facts
// that it does not hold are absent, "not recorded".
#pragma once

#include <memory>
#include <string>

#include "machine/capture/record.h"
#include "machine/machine.h"

namespace machine {

struct CaptureChoices {
  // Whose home "~" means; empty: the capture's own current user.
  std::string user;
};

// Reads `machine.plist` once, everything else when it is asked for. No capture is opened that is
// damaged, may not be read, or is of a later format, and none by a kernel that cannot keep paths
// below a folder.
MACHINE_API Fact<std::shared_ptr<Machine const>> OpenCapture(std::string const& folder,
                                                             CaptureChoices const& choices,
                                                             RecordReader reader);

// One line for people, without a full stop: why a capture was not opened, or not written.
MACHINE_API std::string CaptureMessage(Absence const& absence);

}  // namespace machine
