// A capture as a machine.
#pragma once

#include <memory>

#include "machine/capture/files.h"
#include "machine/capture/sources.h"
#include "machine/live/root.h"

namespace machine::capture {

// The parts of a capture, opened.
struct OpenedCapture {
  Facts facts{Record()};
  // Only with a folder of copies; else why there is none.
  std::optional<live::Root> root;
  std::string why_no_files;
  // The capture's own, where it has more than files.
  std::shared_ptr<live::Root const> folder;
  // The root of a volume: its disk is the machine's own.
  bool is_volume = false;
};

std::shared_ptr<Machine const> MakeCapture(OpenedCapture opened, CaptureChoices choices,
                                           RecordReader reader);

}  // namespace machine::capture
