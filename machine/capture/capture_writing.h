// Lays a recording down as a capture.
#pragma once

#include <string>

#include "machine/capture/recorder.h"
#include "machine/capture/recording.h"

namespace machine::capture {

// What came of the files that are taken along is added to the recording's report.
Fact<Done> WriteCapture(Recording& recording, std::string const& folder, RecordWriter writer,
                        Redacting redacting);

}  // namespace machine::capture
