#include "frameworks/CoreFoundation/bundle_layout.h"

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFPropertyList.h>

#include <vector>

#include "machine/machine.h"
#include "machine/never_destroyed.h"

namespace bundle_layout {
namespace {

// Far more than any information dictionary has.
constexpr std::size_t kMostBytes = std::size_t{16} << 20;

// What each kind of bundle puts before the two files, and before its resources. A framework has
// versions, and at its top links that lead into the current one.
struct Layout {
  char const* files;
  char const* resources;
};
constexpr Layout kLayouts[] = {
    {"Contents/", "Contents/Resources"},
    {"Support Files/", "Support Files/Resources"},
    {"Versions/Current/Resources/", "Versions/Current/Resources"},
    {"Resources/", "Resources"},
    {"", ""},
};

constexpr char const* kFiles[] = {"Info.plist", "PkgInfo"};

std::string PathOf(std::string const& folder, std::size_t description, char const* file) {
  return folder + '/' + kLayouts[description / 2].files + file;
}

}  // namespace

std::span<std::string const> Descriptions() {
  static machine::NeverDestroyed<std::vector<std::string> const> names([] {
    std::vector<std::string> all;
    for (Layout const& layout : kLayouts) {
      for (char const* file : kFiles) all.push_back(std::string(layout.files) + file);
    }
    return all;
  }());
  return *names;
}

std::string PackagePath(std::string const& folder, std::size_t description) {
  return PathOf(folder, description, kFiles[1]);
}

std::string ResourcesPath(std::string const& folder, std::size_t description) {
  return folder + '/' + kLayouts[description / 2].resources;
}

CFDictionaryRef ReadInfo(std::string const& folder, std::size_t description) {
  bool const is_info = description % 2 == 0;
  return is_info ? ReadDictionary(PathOf(folder, description, kFiles[0])) : nullptr;
}

CFDictionaryRef ReadDictionary(std::string const& path) {
  auto const content = machine::CurrentMachine().Files().ReadFile(path, kMostBytes);
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
