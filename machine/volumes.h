// The volumes of a machine: the mounts that hold files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "machine/export.h"
#include "machine/fact.h"
#include "machine/files.h"

namespace machine {

// A mounted volume, cheap to tell: nothing of this asks the file system itself, which may hang.
struct Volume {
  std::string mount_point;   // absolute
  std::uint64_t mount = 0;   // its number, as in `ItemStatus`; 0 where it is not told
  std::uint64_t device = 0;  // as in `ItemStatus`
};

// What its file system tells. A count that is not kept is 0, which no volume in use has.
struct VolumeFacts {
  std::string name;  // UTF-8
  std::uint64_t total_bytes = 0, free_bytes = 0, block_bytes = 0;
  std::uint64_t files = 0, folders = 0;
  FileTime created, modified;
  bool has_created = false, has_modified = false;
  bool is_read_only = false;
  std::uint16_t flags = 0;  // recorded ones; bit 7 is `is_read_only`
};

class MACHINE_API VolumeSource {
 public:
  virtual ~VolumeSource() = default;
  // The root volume first, then in mount order; pseudo file systems and second mounts of one are
  // left out.
  virtual Fact<std::vector<Volume>> Volumes() const;
  // Timed out when the volume does not answer within its time.
  virtual Fact<VolumeFacts> FactsOf(Volume const& volume) const;
};

}  // namespace machine
