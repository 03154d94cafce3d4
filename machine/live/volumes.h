// The mounted volumes of a Linux machine.
#pragma once

#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "machine/live/root.h"
#include "machine/live/volumes_mounts.h"
#include "machine/volumes.h"

namespace machine::live {

// By the kernel's table of mounts, which is kept until the kernel says that it changed. What may
// hang, a network's file system for one, is asked by a worker.
//
// A recorded tree has the table that was recorded, and its mounts no numbers: those of its files
// are of the machine it lies on. Without a table there is one volume. What only the file systems
// tell is known of the root volume alone.
class MountedVolumes final : public VolumeSource {
 public:
  explicit MountedVolumes(Root const& root) : root_(root) {}
  Fact<SharedVolumes> Volumes() const override;
  Fact<VolumeFacts> FactsOf(Volume const& volume) const override;

 private:
  Fact<SharedVolumes> ReadVolumes() const;
  Fact<SharedVolumes> RecordedVolumes() const;
  bool HasChanged() const;
  bool AnswersFromMemory(Volume const& volume) const;
  Fact<VolumeFacts> FactsOfCopy(Volume const& volume) const;

  Root const& root_;
  mutable std::mutex guard_;  // of all below
  mutable FileDescriptor table_;
  mutable std::int64_t labels_version_ = 0;
  mutable SharedVolumes kept_;
  // The mounts that need no disk and no network to answer.
  mutable std::set<std::uint64_t> in_memory_;
};

// The volumes among mounts: of each file system the first mount of all of it that can be reached
// and that this process may look into.
std::vector<Volume> SelectVolumes(std::vector<Mount> const& mounts, Root const& root);

inline constexpr char kMountTable[] = "/proc/self/mountinfo";

// Of the table's text, as the kernel writes it.
Fact<std::vector<Mount>> ParseMounts(std::string const& table);

// Whether file systems of a type have a server, on a network or in a process.
bool IsServedByOthers(std::string_view type);

// Such mounts that can be reached. The root is left out: nothing runs without it.
std::vector<Mount> FindMountsOfOthers(std::vector<Mount> const& mounts);

// What calls on a mount go by at the worker: one that hangs is no reason to mistrust another mount
// in the same place.
std::string SubjectOf(std::string const& point, std::uint64_t number);

// The mounts that answer from memory, and everything that lies on the way to them.
std::set<std::uint64_t> FindMountsInMemory(std::vector<Mount> const& mounts);

}  // namespace machine::live
