#include "frameworks/CoreFoundation/volume_paths.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <set>
#include <vector>

#include "machine/machine.h"

namespace volume_paths {
namespace {

struct Volume {
  std::string name;
  std::string mount_point;
};

// File systems that hold no files of anyone.
constexpr std::array<std::string_view, 27> kPseudoFileSystems = {
    "autofs",     "bdev",     "binfmt_misc",     "bpf",     "cgroup",    "cgroup2",
    "configfs",   "cpuset",   "debugfs",         "devfs",   "devpts",    "devtmpfs",
    "dlmfs",      "efivarfs", "fuse.gvfsd-fuse", "fusectl", "hugetlbfs", "mqueue",
    "none",       "nsfs",     "pipefs",          "proc",    "pstore",    "rpc_pipefs",
    "securityfs", "sysfs",    "tracefs"};

bool IsPseudo(std::string_view type) {
  return std::find(kPseudoFileSystems.begin(), kPseudoFileSystems.end(), type) !=
         kPseudoFileSystems.end();
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (;;) {
    std::size_t const end = text.find(separator);
    pieces.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

// The kernel writes blanks and the like as a backslash and three octal digits.
std::string Unescape(std::string_view text) {
  auto const is_octal = [](char c) { return c >= '0' && c <= '7'; };
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 3 < text.size() &&
        std::all_of(&text[i + 1], &text[i + 4], is_octal)) {
      plain.push_back(static_cast<char>((text[i + 1] - '0') << 6 | (text[i + 2] - '0') << 3 |
                                        (text[i + 3] - '0')));
      i += 3;
    } else {
      plain.push_back(text[i]);
    }
  }
  return plain;
}

// The volumes of the machine in use, the root first and always there. Names are the last component
// of the mount point; labels come with the source of volumes.
std::vector<Volume> MountedVolumes() {
  constexpr std::size_t kMostBytes = std::size_t{4} << 20;
  std::vector<Volume> volumes = {{"System", "/"}};
  auto const table = machine::CurrentMachine().Files().ReadFile("/proc/self/mountinfo", kMostBytes);
  if (!table) return volumes;
  std::set<std::string_view> devices;
  for (std::string_view const line : Split(*table, '\n')) {
    // Number, parent, device, root, mount point, options, tags, "-", type, source, options.
    std::vector<std::string_view> const fields = Split(line, ' ');
    auto const dash = std::find(fields.begin(), fields.end(), "-");
    if (fields.size() < 5 || fields.end() - dash < 2 || IsPseudo(dash[1])) continue;
    std::string mount_point = Unescape(fields[4]);
    bool const is_first = devices.insert(fields[2]).second;
    // What is mounted from within a file system is a second place of it.
    if (!is_first || fields[3] != "/" || mount_point == "/") continue;
    if (!mount_point.starts_with('/')) continue;
    std::string name = mount_point.substr(mount_point.rfind('/') + 1);
    volumes.push_back({std::move(name), std::move(mount_point)});
  }
  return volumes;
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
  Volume best;
  for (Volume& volume : MountedVolumes()) {
    bool const is_nearer = volume.mount_point.size() >= best.mount_point.size();
    if (is_nearer && LiesBelow(posix_path, volume.mount_point)) best = std::move(volume);
  }
  std::string hfs_path = Swapped(best.name);
  AppendComponents(posix_path.substr(best.mount_point.size()), hfs_path);
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
  std::string const name = Swapped(hfs_path.substr(0, colon));
  for (Volume const& volume : MountedVolumes()) {
    if (volume.name != name) continue;
    posix_path = volume.mount_point;
    if (colon == std::string_view::npos) return true;
    if (posix_path != "/") posix_path.push_back('/');
    posix_path.append(JoinComponents(hfs_path.substr(colon + 1)));
    return true;
  }
  return false;
}

}  // namespace volume_paths
