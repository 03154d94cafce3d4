// Which translation of a bundle is wanted: languages in the order of preference, and the folders
// that each may have.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "machine/sources.h"

namespace bundle_languages {

// As the environment of a machine has them ("de_AT", "de"), the most wanted first; English where it
// tells of none.
std::vector<std::string> Preferred(machine::EnvironmentSource const& environment);

// The names that the folder "<name>.lproj" of a language may have, the nearest first: for "de_AT"
// "de_AT", "de-AT", "de" and "German". Nothing for what cannot be a name.
std::vector<std::string> FolderNames(std::string_view language);

// All that are looked for, each once: those of the preferred languages, of the bundle's own
// language, which may be empty, the base that all translations start from, and English.
std::vector<std::string> Candidates(std::vector<std::string> const& preferred,
                                    std::string_view development_region);

}  // namespace bundle_languages
