// The volumes of a machine: the mounts that hold files.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "machine/export.h"
#include "machine/fact.h"
#include "machine/files.h"

namespace machine {

// A mounted volume, cheap to tell: nothing of this asks the file system itself, which may hang.
struct Volume {
  // The label, else the last component of the mount point, "System" for the root. UTF-8 as a rule.
  std::string name;
  std::string mount_point;   // absolute
  std::uint64_t mount = 0;   // its number, as in `ItemStatus`; 0 where it is not told
  std::uint64_t device = 0;  // as in `ItemStatus`
  // The mounts that show the same file system elsewhere and are therefore no volumes.
  std::vector<std::uint64_t> other_mounts;
};

using SharedVolumes = std::shared_ptr<std::vector<Volume> const>;

inline constexpr std::uint16_t kVolumeIsReadOnly = 0x0080;

// What its file system tells. What is not known is not there.
struct VolumeFacts {
  // Bytes are those that every user may have.
  std::optional<std::uint64_t> total_bytes, free_bytes, block_bytes;
  std::optional<std::uint64_t> files, folders;
  std::optional<FileTime> created, modified;
  std::uint16_t flags = 0;
  // The root folder, where it was looked at for this.
  std::optional<ItemStatus> root;
};

class MACHINE_API VolumeSource {
 public:
  virtual ~VolumeSource() = default;
  // The root volume first, then in mount order; pseudo file systems and second mounts of one are
  // left out.
  virtual Fact<SharedVolumes> Volumes() const;
  // Also of a mount that was left out, which is known by its number and mount point. Absent when it
  // is not mounted any more, timed out when it does not answer within its time.
  virtual Fact<VolumeFacts> FactsOf(Volume const& volume) const;
};

}  // namespace machine
