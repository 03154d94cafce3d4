// The form in which a plane of the registry is recorded, that of `ioreg -l -a -p <plane>`: one
// dictionary an entry, its properties beside these keys or in a dictionary of their own.
#pragma once

#include <string_view>

namespace machine::capture {

inline constexpr char kRegistryFolder[] = "registry";
inline constexpr char kRegistryKey[] = "Registry";  // in `machine.plist`
inline constexpr char kRegistryRoot[] = "Root";
inline constexpr char kPlaneEnding[] = ".plist";

inline constexpr char kEntryChildren[] = "IORegistryEntryChildren";
inline constexpr char kEntryIdentity[] = "IORegistryEntryID";
inline constexpr char kEntryName[] = "IORegistryEntryName";
inline constexpr char kEntryLocation[] = "IORegistryEntryLocation";
inline constexpr char kEntryProperties[] = "IORegistryEntryProperties";
inline constexpr char kEntryClass[] = "IOObjectClass";
// Ours: why the entry's "Children", "Class" or "Properties" are not there, by those names.
inline constexpr char kEntryAbsent[] = "IORegistryEntryAbsent";
inline constexpr char kAbsentChildren[] = "Children", kAbsentClass[] = "Class",
                      kAbsentProperties[] = "Properties";

inline constexpr std::string_view kEntryKeys[] = {
    kEntryChildren,       kEntryIdentity,      kEntryName,      kEntryLocation,
    kEntryProperties,     kEntryClass,         kEntryAbsent,    "IOObjectRetainCount",
    "IOServiceBusyState", "IOServiceBusyTime", "IOServiceState"};

}  // namespace machine::capture
