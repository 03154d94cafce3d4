#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <unordered_map>

#include "machine/live/volumes.h"
#include "machine/live/volumes_labels.h"

namespace machine::live {
namespace {

// How mounts lie on one another. A mount has a parent, the mount that its mount point is on.
class MountTree {
 public:
  explicit MountTree(std::vector<Mount> const& mounts) {
    for (Mount const& mount : mounts) {
      by_number_.emplace(mount.number, &mount);
      places_.emplace(mount.parent, mount.point);
    }
  }

  Mount const* ParentOf(Mount const& mount) const {
    auto const found = by_number_.find(mount.parent);
    return found == by_number_.end() || found->second == &mount ? nullptr : found->second;
  }

  // Whether another mount lies over this one or over the way to it.
  bool IsHidden(Mount const& mount) const {
    if (places_.contains({mount.number, mount.point})) return true;
    Mount const* step = &mount;
    for (int i = 0; step != nullptr && i < kMostSteps; ++i) {
      if (IsWayHidden(*step)) return true;
      step = ParentOf(*step);
    }
    return false;
  }

  // Whether a mount and all on the way to it are of some kind.
  template <typename Predicate>
  bool IsWholeWay(Mount const& mount, Predicate&& is_of_kind) const {
    Mount const* step = &mount;
    for (int i = 0; step != nullptr; ++i, step = ParentOf(*step)) {
      if (i == kMostSteps || !is_of_kind(*step)) return false;
    }
    return true;
  }

 private:
  static constexpr int kMostSteps = 256;  // the table may be anyone's, with a circle in it

  bool IsWayHidden(Mount const& mount) const {
    std::string_view above = mount.point;
    while (above.size() > 1) {
      above = above.substr(0, std::max<std::size_t>(above.rfind('/'), 1));
      if (places_.contains({mount.parent, above})) return true;
    }
    return false;
  }

  std::unordered_map<std::uint64_t, Mount const*> by_number_;
  std::set<std::pair<std::uint64_t, std::string_view>> places_;
};

bool IsWholeFileSystem(Mount const& mount) {
  // The parts of a btrfs are mounted one by one, and the whole perhaps never.
  return mount.root == "/" || mount.type == "btrfs";
}

std::string NameOf(Mount const& mount, Labels const& labels) {
  std::string name = labels.Of(mount.source);
  if (name.empty()) name = mount.point.substr(mount.point.rfind('/') + 1);
  return name.empty() ? "System" : name;
}

class Selection {
 public:
  Selection(std::vector<Mount> const& mounts, Root const& root) : tree_(mounts), labels_(root) {}

  void Add(Mount const& mount) {
    auto const [place, is_first] = by_device_.emplace(mount.device, volumes_.size());
    if (!is_first) return;
    volumes_.push_back({NameOf(mount, labels_), mount.point, mount.number, mount.device, {}});
  }
  void AddOtherMount(Mount const& mount) {
    auto const found = by_device_.find(mount.device);
    if (found == by_device_.end()) return;
    Volume& volume = volumes_[found->second];
    if (volume.mount != mount.number) volume.other_mounts.push_back(mount.number);
  }
  bool IsHidden(Mount const& mount) const { return tree_.IsHidden(mount); }
  std::vector<Volume> Take() { return std::move(volumes_); }

 private:
  MountTree const tree_;
  Labels const labels_;
  std::vector<Volume> volumes_;
  std::map<std::uint64_t, std::size_t> by_device_;
};

constexpr std::array<std::string_view, 10> kInMemory = {
    "devtmpfs", "ext2", "ext3", "ext4", "proc", "ramfs", "squashfs", "sysfs", "tmpfs", "xfs"};

// Besides all that begin with "fuse".
constexpr std::array<std::string_view, 17> kServedByOthers = {
    "9p",  "afs",  "beegfs", "ceph",     "cifs",  "coda", "gfs2",   "lustre",  "ncpfs",
    "nfs", "nfs4", "ocfs2",  "orangefs", "pvfs2", "smb3", "vboxsf", "virtiofs"};

}  // namespace

std::vector<Volume> SelectVolumes(std::vector<Mount> const& mounts, Root const& root) {
  Selection selection(mounts, root);
  for (Mount const& mount : mounts) {
    if (mount.point == "/" && !selection.IsHidden(mount)) selection.Add(mount);
  }
  for (Mount const& mount : mounts) {
    if (mount.is_pseudo || mount.is_private || !IsWholeFileSystem(mount)) continue;
    if (mount.point != "/" && !selection.IsHidden(mount)) selection.Add(mount);
  }
  for (Mount const& mount : mounts) selection.AddOtherMount(mount);
  return selection.Take();
}

bool IsServedByOthers(std::string_view type) {
  if (type.starts_with("fuse")) return type != "fusectl";
  return std::binary_search(kServedByOthers.begin(), kServedByOthers.end(), type);
}

std::vector<Mount> FindMountsOfOthers(std::vector<Mount> const& mounts) {
  MountTree const tree(mounts);
  std::vector<Mount> found;
  for (Mount const& mount : mounts) {
    if (mount.point == "/" || !IsServedByOthers(mount.type) || tree.IsHidden(mount)) continue;
    found.push_back(mount);
  }
  return found;
}

std::string SubjectOf(std::string const& point, std::uint64_t number) {
  return point + " " + std::to_string(number);
}

std::set<std::uint64_t> FindMountsInMemory(std::vector<Mount> const& mounts) {
  auto const is_in_memory = [](Mount const& mount) {
    return std::binary_search(kInMemory.begin(), kInMemory.end(), mount.type);
  };
  MountTree const tree(mounts);
  std::set<std::uint64_t> found;
  for (Mount const& mount : mounts) {
    if (tree.IsWholeWay(mount, is_in_memory)) found.insert(mount.number);
  }
  return found;
}

}  // namespace machine::live
