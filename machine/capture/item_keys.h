// The keys of a recorded item, for reading and for writing.
#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include "machine/files.h"

namespace machine::capture::item_keys {

inline constexpr char const* kKnownNames[] = {"nothing", "kind", "status", "all"};
inline constexpr char const* kKindNames[] = {"file", "folder", "link", "other"};

struct NumberKey {
  char const* key;
  std::uint64_t most;
  std::uint64_t (*get)(ItemStatus const&);
  void (*set)(ItemStatus&, std::uint64_t);
};

template <auto Member>
constexpr NumberKey NumberKeyFor(char const* key) {
  using Number = std::remove_reference_t<decltype(std::declval<ItemStatus&>().*Member)>;
  return {key, std::numeric_limits<Number>::max(),
          [](ItemStatus const& status) -> std::uint64_t { return status.*Member; },
          [](ItemStatus& status, std::uint64_t number) {
            status.*Member = static_cast<Number>(number);
          }};
}

inline constexpr NumberKey kNumbers[] = {
    NumberKeyFor<&ItemStatus::mode>("Mode"),
    NumberKeyFor<&ItemStatus::user>("User"),
    NumberKeyFor<&ItemStatus::group>("Group"),
    NumberKeyFor<&ItemStatus::links>("Links"),
    NumberKeyFor<&ItemStatus::device>("Device"),
    NumberKeyFor<&ItemStatus::inode>("Inode"),
    NumberKeyFor<&ItemStatus::mount>("Mount"),
    NumberKeyFor<&ItemStatus::bytes>("Bytes"),
    NumberKeyFor<&ItemStatus::allocated_bytes>("AllocatedBytes"),
};

struct TimeKey {
  char const* key;
  FileTime ItemStatus::*member;
};
inline constexpr char kBorn[] = "Born";  // only where the time is known
inline constexpr TimeKey kTimes[] = {{kBorn, &ItemStatus::birth},
                                     {"Modified", &ItemStatus::modification},
                                     {"Changed", &ItemStatus::change},
                                     {"Accessed", &ItemStatus::access}};

struct SpaceKey {
  char const* key;
  std::uint64_t VolumeSpace::*member;
};
inline constexpr SpaceKey kSpaceNumbers[] = {{"TotalBytes", &VolumeSpace::total_bytes},
                                             {"FreeBytes", &VolumeSpace::free_bytes},
                                             {"BlockBytes", &VolumeSpace::block_bytes},
                                             {"Files", &VolumeSpace::files}};
inline constexpr char kIsReadOnly[] = "IsReadOnly";
inline constexpr char kHasMoreEntries[] = "HasMoreEntries";

}  // namespace machine::capture::item_keys
