// What a capture's folder holds, with digests, so that it shows when it is no longer what was
// written. `SHA256SUMS` is as sha256sum(1) writes and checks it. What that program does not know
// stands in comment lines: folders, links by the digest of their targets, and files of which the
// size alone was recorded.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace gatotu::host {

inline constexpr char kManifest[] = "SHA256SUMS";

// By paths below the folder: the digest of a file, or "folder", "link DIGEST", "hole SIZE". Nothing
// is followed or opened but regular files.
using Manifest = std::map<std::string, std::string>;

std::string TextOf(Manifest const& manifest);
// Nothing when a line is none of a manifest's.
std::optional<Manifest> ParseManifest(std::string_view text);

// Written in one step, last of all. The answer is what went wrong.
std::optional<std::string> WriteManifest(std::string const& folder);

struct ManifestDifferences {
  std::vector<std::string> altered, missing, added;
  std::size_t count = 0;  // of entries that were looked at
};
// The other is what went wrong.
using ManifestCheck = std::variant<ManifestDifferences, std::string>;
ManifestCheck CheckManifest(std::string const& folder);

}  // namespace gatotu::host
