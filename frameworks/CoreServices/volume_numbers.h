// The reference numbers of volumes: -100, -101 and so on, the root volume's first. A number stays
// with its mount, mounted or not, as long as the machine in use does.
#pragma once

#include <CoreServices/Files.h>

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "machine/machine.h"

struct NumberedVolume {
  FSVolumeRefNum number = 0;
  machine::Volume volume;
};

class VolumeNumbers {
 public:
  static VolumeNumbers& Shared();

  // The volume at a place in the machine's list, 0 for the first.
  std::optional<NumberedVolume> At(std::size_t place);
  // Nothing for a number that was not given, and for a volume that is on the list no more.
  std::optional<NumberedVolume> WithNumber(FSVolumeRefNum number);

  // Where an item is: found by its mount, else by its device. A mount that is no part of a volume
  // has a number of its own. 0 when there are no numbers left.
  FSVolumeRefNum NumberOf(machine::ItemStatus const& status, std::string const& path);

 private:
  using Mount = std::pair<std::uint64_t, std::uint64_t>;  // its number and device
  // With the mount point where they are not told.
  using Identity = std::pair<Mount, std::string>;
  struct Known {
    machine::Volume volume;
    bool is_listed = false;
    bool is_left_out = false;
  };

  static Identity IdentityOf(machine::Volume const& volume);

  // Null where the machine has no list.
  machine::SharedVolumes ReadList();
  FSVolumeRefNum Enter(machine::Volume const& volume);
  Known& KnownAs(FSVolumeRefNum number);
  FSVolumeRefNum Find(Identity const& identity) const;
  FSVolumeRefNum FindByMount(machine::ItemStatus const& status) const;
  FSVolumeRefNum FindByPath(std::string path) const;
  FSVolumeRefNum EnterLeftOut(machine::ItemStatus const& status, std::string const& path);

  std::mutex guard_;  // of all below, which are of one machine
  std::uint64_t machine_ = 0;
  machine::SharedVolumes list_;
  std::vector<Known> known_;  // by number
  bool has_untold_mounts_ = false;
  std::map<Identity, FSVolumeRefNum> numbers_;
  std::map<Mount, FSVolumeRefNum> numbers_of_mounts_;  // those met since the list was read
};
