#include "machine/live/volumes_labels.h"

#include <sys/stat.h>

#include "machine/live/item.h"
#include "machine/live/text.h"

namespace machine::live {
namespace {

// What a link's name cannot hold stands there as "\x2f".
std::string Decode(std::string_view name) {
  std::string label;
  while (!name.empty()) {
    auto const code = name.starts_with("\\x") && name.size() >= 4
                          ? ParseNumber<unsigned char>(name.substr(2, 2), 16)
                          : std::nullopt;
    label += code ? static_cast<char>(*code) : name.front();
    name.remove_prefix(code ? 4 : 1);
  }
  return label;
}

// "sda1" of "../../sda1": devices have one name, whatever leads to them.
std::string DeviceName(std::string const& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

// The device manager puts new links in the place of old ones.
std::int64_t Labels::Version() {
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  struct stat folder;
  if (::stat(kFolder, &folder) != 0) return 0;
  return folder.st_mtim.tv_sec * kNanoseconds + folder.st_mtim.tv_nsec;
}

Labels::Labels(Root const& root) : root_(root) {
  // Most machines without labels have no such folder, and nothing is amiss.
  if (!root.OpenFolder(kFolder).is_open()) return;
  auto const links = root.List(kFolder);
  if (!links) return;
  for (std::string const& link : *links) {
    auto const target = root.ReadLink(PathIn(kFolder, link));
    if (target) by_device_.emplace(DeviceName(*target), Decode(link));
  }
}

std::string Labels::Of(std::string const& device) const {
  if (by_device_.empty() || !device.starts_with("/dev/")) return {};
  auto const target = root_.ReadLink(device);
  auto const found = by_device_.find(DeviceName(target ? *target : device));
  return found == by_device_.end() ? std::string() : found->second;
}

}  // namespace machine::live
