#include "frameworks/CoreFoundation/volume_paths.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "machine/machine.h"

namespace volume_paths {
namespace {

using machine::Volume;

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (;;) {
    std::size_t const end = text.find(separator);
    pieces.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

// The root is always there, whatever the machine tells.
machine::SharedVolumes MountedVolumes() {
  auto const volumes = machine::CurrentMachine().Volumes().Volumes();
  if (volumes && !(*volumes)->empty() && (*volumes)->front().mount_point == "/") return *volumes;
  std::vector<Volume> with_root = {{"System", "/", 0, 0, {}}};
  if (volumes) with_root.insert(with_root.end(), (*volumes)->begin(), (*volumes)->end());
  return std::make_shared<std::vector<Volume> const>(std::move(with_root));
}

bool LiesBelow(std::string_view path, std::string_view folder) {
  if (folder == "/") return path.starts_with('/');
  return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

std::string Swapped(std::string_view component) {
  std::string swapped(component);
  for (char& c : swapped) c = c == ':' ? '/' : c == '/' ? ':' : c;
  return swapped;
}

// A label may have a `/` of its own, which comes back as one.
std::string HfsNameOf(Volume const& volume) {
  std::string name = volume.name;
  std::replace(name.begin(), name.end(), ':', '/');
  return name;
}

void AppendComponents(std::string_view posix_path, std::string& hfs_path) {
  for (std::string_view const component : Split(posix_path, '/')) {
    if (component.empty() || component == ".") continue;
    hfs_path.push_back(':');
    if (component != "..") hfs_path.append(Swapped(component));
  }
}

// A `:` at the end says that this is a folder.
std::string JoinComponents(std::string_view hfs_path) {
  if (hfs_path.ends_with(':')) hfs_path.remove_suffix(1);
  if (hfs_path.empty()) return {};
  std::string posix_path;
  for (std::string_view const component : Split(hfs_path, ':')) {
    if (!posix_path.empty()) posix_path.push_back('/');
    posix_path.append(component.empty() ? ".." : Swapped(component));
  }
  return posix_path;
}

}  // namespace

std::string HfsPathOf(std::string_view posix_path) {
  machine::SharedVolumes const volumes = MountedVolumes();
  Volume const* best = &volumes->front();
  for (Volume const& volume : *volumes) {
    bool const is_nearer = volume.mount_point.size() >= best->mount_point.size();
    if (is_nearer && LiesBelow(posix_path, volume.mount_point)) best = &volume;
  }
  std::string hfs_path = HfsNameOf(*best);
  AppendComponents(posix_path.substr(best->mount_point.size()), hfs_path);
  return hfs_path;
}

std::string RelativeHfsPathOf(std::string_view posix_path) {
  std::string hfs_path;
  AppendComponents(posix_path, hfs_path);
  return hfs_path.empty() ? ":" : hfs_path;
}

bool PosixPathOf(std::string_view hfs_path, std::string& posix_path) {
  std::size_t const colon = hfs_path.find(':');
  if (colon == 0) {
    posix_path = JoinComponents(hfs_path.substr(1));
    if (posix_path.empty()) posix_path = ".";
    return true;
  }
  machine::SharedVolumes const volumes = MountedVolumes();
  for (Volume const& volume : *volumes) {
    if (HfsNameOf(volume) != hfs_path.substr(0, colon)) continue;
    posix_path = volume.mount_point;
    if (colon == std::string_view::npos) return true;
    if (posix_path != "/") posix_path.push_back('/');
    posix_path.append(JoinComponents(hfs_path.substr(colon + 1)));
    return true;
  }
  return false;
}

}  // namespace volume_paths
