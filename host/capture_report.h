// What `gatotu capture` tells of a capture that it wrote.
#pragma once

#include "host/capture_request.h"
#include "host/recorded_expressions.h"
#include "machine/capture/recorder.h"

namespace gatotu::host {

// What is in it and what was left out, on standard output; on standard error what could not be
// read.
void TellOfCapture(CaptureRequest const& request, ExpressionCounts const& counts,
                   machine::Recorder const& recorder);

}  // namespace gatotu::host
