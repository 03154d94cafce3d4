#include "portable/macintosh/special_folder.h"

#include "portable/file_errors.h"

namespace MacintoshPlatform {

FileLocation MakeFileLocation(MacFileType type, short domain, unsigned char create) {
  FSRef ref;
  OSErr const code = FSFindFolder(domain, type, create, &ref);
  if (code != noErr) throw CannotCreateSpecialFolder(code);
  return FileLocation(ref);
}

FileLocation TemporaryFileDirLocation(short volume) {
  return MakeFileLocation(kTemporaryFolderType, volume, 1);
}

}  // namespace MacintoshPlatform
