#include "frameworks/CoreFoundation/bundle_layout.h"

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFPropertyList.h>

#include <chrono>
#include <iterator>

#include "machine/machine.h"

namespace bundle_layout {
namespace {

// Far more than any information dictionary has.
constexpr std::size_t kMostBytes = std::size_t{16} << 20;

// What each kind of bundle puts before its Info.plist and PkgInfo, and before its resources. A
// framework has versions, and links at its top that lead into the current one.
struct Layout {
  char const* description;
  char const* resources;
};
constexpr Layout kLayouts[] = {
    {"/Contents", "/Contents/Resources"},
    {"/Support Files", "/Support Files/Resources"},
    {"/Versions/Current/Resources", "/Versions/Current/Resources"},
    {"/Resources", "/Resources"},
    {"", ""},
};

std::string Below(std::string const& folder, char const* part) {
  return (folder == "/" ? std::string() : folder) + part;
}

machine::FileSource const& Files() { return machine::CurrentMachine().Files(); }

}  // namespace

std::optional<FileState> StateOf(std::string const& path) {
  auto const status = Files().Status(path, machine::Links::kFollow);
  if (!status) return std::nullopt;
  return FileState{.kind = status->kind,
                   .device = status->device,
                   .inode = status->inode,
                   .bytes = status->bytes,
                   .modified_seconds = status->modification.seconds,
                   .changed_seconds = status->change.seconds,
                   .modified_nanoseconds = status->modification.nanoseconds,
                   .changed_nanoseconds = status->change.nanoseconds};
}

// The stamps are those of the kernel that runs this process, whatever machine the files tell of,
// and so is the clock. A file system that keeps whole seconds shows no nanoseconds.
bool IsSettled(FileState const& state) {
  using std::chrono::duration_cast, std::chrono::nanoseconds, std::chrono::seconds;
  auto const now = std::chrono::system_clock::now().time_since_epoch();
  auto const step = state.changed_nanoseconds == 0 ? nanoseconds(seconds(2))
                                                   : nanoseconds(std::chrono::milliseconds(50));
  return seconds(state.changed_seconds) + nanoseconds(state.changed_nanoseconds) + step <
         duration_cast<nanoseconds>(now);
}

std::optional<Description> FindDescription(std::string const& folder) {
  for (std::size_t i = 0; i < std::size(kLayouts); ++i) {
    if (auto const state = StateOf(InfoPath(folder, i))) return Description{i, true, *state};
    if (auto const state = StateOf(PackageInfoPath(folder, i)))
      return Description{i, false, *state};
  }
  return std::nullopt;
}

std::string InfoPath(std::string const& folder, std::size_t layout) {
  return Below(folder, kLayouts[layout].description) + "/Info.plist";
}

std::string PackageInfoPath(std::string const& folder, std::size_t layout) {
  return Below(folder, kLayouts[layout].description) + "/PkgInfo";
}

std::string ResourcesPath(std::string const& folder, std::size_t layout) {
  return Below(folder, kLayouts[layout].resources);
}

CFDictionaryRef ReadDictionary(std::string const& path) {
  auto const content = Files().ReadFile(path, kMostBytes);
  if (!content) return nullptr;
  CFDataRef const data = CFDataCreate(nullptr, reinterpret_cast<UInt8 const*>(content->data()),
                                      static_cast<CFIndex>(content->size()));
  CFPropertyListRef const root = CFPropertyListCreateWithData(nullptr, data, 0, nullptr, nullptr);
  CFRelease(data);
  if (root == nullptr || CFGetTypeID(root) == CFDictionaryGetTypeID()) {
    return static_cast<CFDictionaryRef>(root);
  }
  CFRelease(root);
  return nullptr;
}

}  // namespace bundle_layout
