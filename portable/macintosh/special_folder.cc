#include "portable/macintosh/special_folder.h"

#include "portable/file_errors.h"

namespace MacintoshPlatform {

FileLocation MakeFileLocation(MacFileType type, short domain, unsigned char create) {
  FSRef ref;
  OSErr const code = FSFindFolder(domain, type, create, &ref);
  if (code != noErr) throw CannotCreateSpecialFolder(code);
  return FileLocation(ref);
}

FileLocation TemporaryFileDirLocation(short domain) {
  return MakeFileLocation(kTemporaryFolderType, domain, 1);
}

}  // namespace MacintoshPlatform
