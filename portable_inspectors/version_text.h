// Versions as text, and their order.
#pragma once

#include <compare>
#include <string>

#include "evaluator/plugin/export.h"
#include "evaluator/plugin/values.h"
#include "frame/inspector_version.h"
#include "portable/const_data.h"
#include "portable_inspectors/version_order.h"

namespace MacintoshPlatform {

// Keeps the text for showing and comparing (`version_order.h` says which texts are versions; white
// space around is dropped) and fills the numbers from it, 65535 for larger ones. A text that is no
// version, or longer than a version can hold, throws `NoSuchObject`.
GATOTU_API inspector_version TextToVersion(ConstData text);

// The text it was read from. One of numbers alone: "10.2", "10.2.1", "10.2.1b3".
GATOTU_API std::string AsString(inspector_version const& version);

GATOTU_API VersionParts PartsOf(inspector_version const& version);

// By text, where a version of numbers has the text that `AsString` gives it.
GATOTU_API std::weak_ordering Compare(inspector_version const& left,
                                      inspector_version const& right);

}  // namespace MacintoshPlatform

// In evaluator memory.
GATOTU_API inspector_string AsString(inspector_version const& version);
