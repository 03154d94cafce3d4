#include "machine/live/registry_device_tree.h"

#include <cerrno>
#include <optional>

#include "machine/capture/values.h"
#include "machine/live/registry_attributes.h"
#include "machine/live/registry_firmware.h"

namespace machine::live {
namespace {

constexpr char kTree[] = "/proc/device-tree";
constexpr std::size_t kLargestValue = std::size_t{1} << 16, kMostValues = 4096;

// A folder of the firmware's tree: the path of the whole tree, and the path in it, "" for its root.
struct TreePlace {
  std::string tree, path;
  std::string Folder() const { return tree + path; }
};

SharedRegistryNode MakeNode(SharedRoot root, TreePlace place);

class FoldersOfNode final : public RegistryChildren {
 public:
  FoldersOfNode(SharedRoot root, TreePlace place, FileDescriptor folder)
      : root_(std::move(root)), place_(std::move(place)), reader_(std::move(folder), DT_DIR) {}

  Fact<SharedRegistryNode> Next() override {
    char const* const name = reader_.Next();
    if (name == nullptr) return SharedRegistryNode();
    return MakeNode(root_, {place_.tree, place_.path + "/" + name});
  }

 private:
  SharedRoot const root_;
  TreePlace const place_;
  EntryReader reader_;
};

class TreeNode final : public RegistryNode {
 public:
  TreeNode(SharedRoot root, TreePlace place) : root_(std::move(root)), place_(std::move(place)) {}

  std::uint64_t Identity() const override { return IdentityOfPath(place_.Folder()); }
  Fact<std::string> NameIn(std::string_view plane) const override {
    if (plane != kDeviceTreePlane) return NotIn(plane);
    return std::string(LastName(place_.path.empty() ? kTree : place_.path));
  }
  Fact<std::string> PathIn(std::string_view plane) const override {
    if (plane != kDeviceTreePlane) return NotIn(plane);
    if (!IsFolderItself(*root_, place_.Folder())) {
      return AnnounceAbsence(Outcome::kAbsent, place_.Folder());
    }
    Announce(place_.Folder(), Outcome::kAnswered);
    return place_.path.empty() ? "/" : place_.path;
  }
  Fact<std::string> ClassName() const override { return std::string("IOService"); }
  Fact<RecordDictionary> Properties() const override;
  Fact<std::unique_ptr<RegistryChildren>> Children(std::string_view plane) const override {
    if (plane != kDeviceTreePlane) return NotIn(plane);
    FileDescriptor folder = root_->OpenFolder(place_.Folder());
    if (!folder.is_open()) return AnnounceError(errno, place_.Folder());
    Announce(place_.Folder(), Outcome::kAnswered);
    return std::make_unique<FoldersOfNode>(root_, place_, std::move(folder));
  }

 private:
  Absence NotIn(std::string_view plane) const {
    return AnnounceAbsence(Outcome::kAbsent, place_.Folder(), "not in plane " + std::string(plane));
  }

  SharedRoot const root_;
  TreePlace const place_;
};

Fact<RecordDictionary> TreeNode::Properties() const {
  FileDescriptor folder = root_->OpenFolder(place_.Folder());
  if (!folder.is_open()) return AnnounceError(errno, place_.Folder());
  RecordDictionary properties;
  EntryReader reader(std::move(folder), DT_REG);
  while (char const* const name = reader.Next()) {
    Record key = capture::RecordOfBytes(name);
    if (key.As<std::string>() == nullptr || properties.entries().size() == kMostValues) continue;
    Fact<std::string> value = ReadAttribute(*root_, place_.Folder() + "/" + name, kLargestValue);
    if (value) properties.Add(name, RecordBytes{*std::move(value)});
  }
  return properties;
}

SharedRegistryNode MakeNode(SharedRoot root, TreePlace place) {
  return std::make_shared<TreeNode const>(std::move(root), std::move(place));
}

// Kernels may show a tree that says nothing where the firmware has none.
bool IsRealTree(Root const& root, std::string const& path) {
  return root.OpenItemItself(path + "/compatible").is_open() ||
         EntryReader(root.OpenFolder(path), DT_DIR).Next() != nullptr;
}

// The path of the tree itself, which is reached by a link.
std::optional<std::string> PathOfTree(Root const& root) {
  FileDescriptor const tree = root.OpenItem(kTree);
  if (!tree.is_open()) return {};
  std::string path = root.PathOf(tree);
  if (path.empty() || !IsRealTree(root, path)) return {};
  return path;
}

// The only folder of that name with anything behind "@".
std::optional<std::string> FindWithLocation(Root const& root, std::string const& folder,
                                            std::string_view name) {
  EntryReader reader(root.OpenFolder(folder), DT_DIR);
  std::optional<std::string> found;
  while (char const* const entry = reader.Next()) {
    std::string_view const candidate = entry;
    if (!candidate.starts_with(name) || !candidate.substr(name.size()).starts_with('@')) continue;
    if (found) return {};
    found = candidate;
  }
  return found;
}

Fact<SharedRegistryNode> TreeNodeAt(SharedRoot const& root, std::string tree,
                                    std::string_view path) {
  TreePlace place{std::move(tree), {}};
  bool is_path = path.starts_with('/');
  if (path == "/") path = {};
  while (is_path && !path.empty()) {
    std::string name(path.substr(1, path.find('/', 1) - 1));
    path.remove_prefix(1 + name.size());
    is_path = !name.empty();
    if (is_path && !IsFolderItself(*root, place.Folder() + "/" + name)) {
      auto whole = FindWithLocation(*root, place.Folder(), name);
      is_path = whole.has_value();
      name = whole.value_or("");
    }
    place.path += "/" + name;
  }
  if (!is_path) return AnnounceAbsence(Outcome::kAbsent, place.Folder());
  return MakeNode(root, std::move(place));
}

}  // namespace

Fact<SharedRegistryNode> DeviceTreeNodeAt(SharedRoot const& root, std::string_view path) {
  if (auto tree = PathOfTree(*root)) return TreeNodeAt(root, *std::move(tree), path);
  return FirmwareNodeAt(root, path);
}

}  // namespace machine::live
