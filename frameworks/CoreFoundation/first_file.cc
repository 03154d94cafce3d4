#include "frameworks/CoreFoundation/first_file.h"

#include <string_view>

#include "machine/machine.h"

namespace {

std::string Below(std::string const& folder, std::string_view name) {
  std::string path;
  path.reserve(folder.size() + 1 + name.size());
  return path.append(folder).append(1, '/').append(name);
}

bool IsEntry(std::string const& path) {
  return machine::CurrentMachine().Files().Status(path, machine::Links::kKeep).has_value();
}

std::string_view FirstComponent(std::string_view name) { return name.substr(0, name.find('/')); }

}  // namespace

// What stands in a folder that is missing is missing too. One that is there might get the file
// later without a change of the folder above, and so might the end of a link.
FirstFile::FirstFile(std::string const& folder, std::span<std::string const> names)
    : folder_(FileState::Of(folder + '/')) {
  std::string_view missing;
  for (index_ = 0; index_ < names.size() && folder_; ++index_) {
    std::string_view const name = names[index_], component = FirstComponent(name);
    if (component == missing) continue;
    file_ = FileState::Of(Below(folder, name));
    if (file_) return;
    if (IsEntry(Below(folder, component))) {
      folder_tells_ = false;
    } else {
      missing = component;
    }
  }
}

bool FirstFile::IsStillIn(std::string const& folder, std::span<std::string const> names) const {
  auto const is_same_file = [&] { return FileState::Of(Below(folder, names[index_])) == file_; };
  if (file_ && index_ == 0) return is_same_file();
  if (folder_tells_ && (!folder_ || folder_->is_settled)) {
    return FileState::Of(folder + '/') == folder_ && (!file_ || is_same_file());
  }
  FirstFile const now(folder, names);
  return now.index_ == index_ && now.file_ == file_;
}
