// What a system's own files tell of it and of its users, on whatever kind of machine they lie.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/files.h"
#include "machine/sources.h"

namespace machine {

inline constexpr char kSystemVersionPath[] = "/System/Library/CoreServices/SystemVersion.plist";
inline constexpr char kUserListPath[] = "/etc/passwd";
inline constexpr char kGroupListPath[] = "/etc/group";
inline constexpr char kMachineIdPath[] = "/etc/machine-id";
inline constexpr std::string_view kZoneFolder = "/usr/share/zoneinfo/";
inline constexpr char kLocalTimePath[] = "/etc/localtime";
// These files are small; one that is larger than this is malformed.
inline constexpr std::size_t kLargestSystemFile = std::size_t{16} << 20;

// By the file that tells the system's version.
Fact<Platform> PlatformOfFiles(FileSource const& files);

// The product's name, version and build, as far as os-release(5) has them.
Fact<SystemVersion> VersionInOsRelease(FileSource const& files);

// hostname(5)
Fact<std::string> HostNameInFile(FileSource const& files);

// machine-id(5)
Fact<std::string> MachineIdentifier(FileSource const& files);

// passwd(5)
Fact<std::string> HomeInAccounts(FileSource const& files, std::string const& user);
// The first name with that number in the text of passwd(5) or group(5).
std::optional<std::string_view> NameInAccounts(std::string_view text, std::uint32_t number);

// "Europe/Berlin" of a path that lies in a folder of zones; empty for any other path.
std::string NameOfZoneFile(std::string_view path);

}  // namespace machine
