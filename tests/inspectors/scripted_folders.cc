#include "tests/inspectors/scripted_folders.h"

#include <dlfcn.h>

#include "inspectors/files/special_folder.h"

namespace {

ScriptedFolders* current = nullptr;

}  // namespace

ScriptedFolders::ScriptedFolders() {
  current = this;
  Forget();
}

ScriptedFolders::~ScriptedFolders() {
  current = nullptr;
  Forget();
}

void ScriptedFolders::Forget() {
  Instant now{};
  ClearSpecialFolderCaches(now, nullptr);
}

// This program's function comes before that of the library.
OSErr FSFindFolder(FSVolumeRefNum domain, OSType code, Boolean create, FSRef* found) {
  if (current == nullptr) {
    static auto* const real =
        reinterpret_cast<decltype(&FSFindFolder)>(::dlsym(RTLD_NEXT, "FSFindFolder"));
    return real(domain, code, create, found);
  }
  current->asked.emplace_back(domain, code);
  if (create != 0) ++current->creations;
  auto const path = current->paths.find({domain, code});
  if (path == current->paths.end()) return fnfErr;
  auto const* const bytes = reinterpret_cast<UInt8 const*>(path->second.c_str());
  OSStatus const status = FSPathMakeRef(bytes, found, nullptr);
  if (current->after_finding) current->after_finding();
  return static_cast<OSErr>(status);
}
