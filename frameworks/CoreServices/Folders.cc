#include <CoreServices/Folders.h>

#include "machine/machine.h"

// Temporary files of the user go where the environment says.
OSErr FSFindFolder(FSVolumeRefNum vRefNum, OSType folderType, Boolean, FSRef* foundRef) {
  bool const has_one = vRefNum != kNetworkDomain && vRefNum != kClassicDomain;
  if (folderType != kTemporaryFolderType || !has_one) return fnfErr;
  std::string path = "/tmp";
  if (vRefNum == kUserDomain) {
    auto const variable = machine::CurrentMachine().Environment().Variable("TMPDIR");
    if (variable && variable->starts_with('/')) path = *variable;
  }
  Boolean is_folder = false;
  FSRef ref;
  OSStatus const code =
      FSPathMakeRef(reinterpret_cast<UInt8 const*>(path.c_str()), &ref, &is_folder);
  if (code != noErr) return static_cast<OSErr>(code);
  if (!is_folder) return errFSNotAFolder;
  *foundRef = ref;
  return noErr;
}
