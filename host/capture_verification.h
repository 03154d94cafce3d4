// `gatotu capture --verify`: whether a capture still is what was written.
#pragma once

#include <string>

#include "host/capture_manifest.h"
#include "host/exit_status.h"

namespace gatotu::host {

// Tells what was altered, is missing or was added. "No answer" then, "unusable" without a list of
// digests.
ExitStatus TellOfVerification(std::string const& folder, ManifestCheck const& checked);

}  // namespace gatotu::host
