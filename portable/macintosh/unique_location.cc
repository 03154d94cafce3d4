#include "portable/macintosh/unique_location.h"

#include <BSD/BSD.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "portable/file_errors.h"
#include "portable/macintosh/file_operations.h"

namespace MacintoshPlatform {
namespace {

constexpr unsigned long kPathRoom = 1024;
constexpr char kPlaceholder[] = "XXXXXX";
// Of the `/`, the placeholder and nothing else: the NUL is counted with the directory's path.
constexpr unsigned long kFixedLength = 7;

FileLocation FolderFor(FileLocation const& location) {
  if (LeadsToDirectory(location)) return location;
  return FileLocation(location.ParentURL());
}

bool MakeItem(char* path, bool is_directory) {
  if (is_directory) return BSD::mkdtemp(path) != nullptr;
  int const descriptor = BSD::mkstemp(path);
  if (descriptor < 0) return false;
  // The empty file stays and reserves the name.
  close(descriptor);
  return true;
}

}  // namespace

FileLocation CreateUniqueFileOrDirLocation(FileLocation const& directory, char const* hint,
                                           bool is_directory) {
  if (directory.IsEmpty()) throw EmptyFileLocationError();
  if (hint == nullptr) hint = "";
  unsigned long const hint_length = std::strlen(hint);
  if (hint_length + kFixedLength >= kPathRoom) throw FullPathFailed(directory, 0);
  if (std::strchr(hint, '/') != nullptr) throw CreateUniqueFileLocationFailed(0);

  char path[kPathRoom];
  directory.POSIXPath(reinterpret_cast<unsigned char*>(path),
                      kPathRoom - (kFixedLength + hint_length));
  char* end = path + std::strlen(path);
  *end++ = '/';
  char const* const name = end;
  end = std::copy_n(hint, hint_length, end);
  std::copy_n(kPlaceholder, sizeof kPlaceholder, end);
  if (!MakeItem(path, is_directory)) throw CreateUniqueFileLocationFailed(0);
  return FileLocation(directory, FileName(ConstData(name)));
}

FileLocation CreateUniqueFileLocation(FileLocation const& directory, char const* hint) {
  return CreateUniqueFileOrDirLocation(directory, hint, false);
}

FileLocation CreateUniqueDirLocation(FileLocation const& directory, char const* hint) {
  return CreateUniqueFileOrDirLocation(directory, hint, true);
}

FileLocation CreateUniqueFileLocationWithHint(FileLocation const& location, char const* hint) {
  if (location.IsEmpty()) throw EmptyFileLocationError();
  return CreateUniqueFileLocation(FolderFor(location), hint);
}

FileLocation LocationForTemporaryFile(FileLocation const& location) {
  if (location.IsEmpty()) throw EmptyFileLocationError();
  FileLocation const free = CreateUniqueFileLocation(FolderFor(location), "temp");
  ForceNonexistence(free);
  return free;
}

}  // namespace MacintoshPlatform
