#include "frameworks/CoreFoundation/first_file.h"

#include <chrono>
#include <string_view>
#include <tuple>
#include <utility>

#include "machine/machine.h"

namespace {

// Whether the step of time that a change fell into is over. Stamps are given by the kernel that
// runs this process, whatever machine the files tell of, and so is the clock that they are compared
// with. A file system that keeps whole seconds shows no nanoseconds.
bool IsPast(machine::FileTime const& change) {
  using namespace std::chrono;
  auto const step = change.nanoseconds == 0 ? milliseconds(2000) : milliseconds(50);
  auto const now = duration_cast<nanoseconds>(system_clock::now().time_since_epoch() - step);
  return std::pair(change.seconds, std::int64_t{change.nanoseconds}) <
         std::pair(std::int64_t{now / seconds(1)}, std::int64_t{(now % seconds(1)).count()});
}

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

std::optional<FileState> FileState::Of(std::string const& path) {
  auto const status = machine::CurrentMachine().Files().Status(path, machine::Links::kFollow);
  if (!status) return std::nullopt;
  return FileState{.kind = status->kind,
                   .device = status->device,
                   .inode = status->inode,
                   .bytes = status->bytes,
                   .modification = status->modification,
                   .change = status->change,
                   .is_settled = IsPast(status->change)};
}

bool FileState::operator==(FileState const& other) const {
  auto const parts = [](FileState const& state) {
    return std::tuple(state.kind, state.device, state.inode, state.bytes,
                      state.modification.seconds, state.modification.nanoseconds,
                      state.change.seconds, state.change.nanoseconds);
  };
  return parts(*this) == parts(other);
}

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
