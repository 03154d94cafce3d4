#include "portable/macintosh/replacement_file.h"

#include <sys/stat.h>

#include <random>
#include <string>

#include "portable/file_errors.h"
#include "portable/macintosh/file_item.h"
#include "portable/macintosh/file_writer.h"

namespace MacintoshPlatform {
namespace {

void ThrowError(OSErr code, FileLocation const& place) {
  ThrowWriteError(code, ConstData(place.POSIXPath()));
}

// Enough that two processes hardly ever meet; when they do, the next is tried.
std::string HiddenName() {
  static constexpr char kCharacters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
  std::random_device random;
  std::uniform_int_distribution<int> one_of(0, sizeof kCharacters - 2);
  std::string name = ".new";
  for (int i = 0; i < 12; ++i) name += kCharacters[one_of(random)];
  return name;
}

}  // namespace

ReplacementFile::ReplacementFile(FileLocation const& place) : place_(place) {
  FileItem item;
  bool const is_there = item.TryToGet(place);
  if (is_there) {
    if ((item.Info().Catalog().permissions.mode & S_IFMT) != S_IFREG) {
      throw NotAFileError(place, notAFileErr);
    }
    if (item.IsLocked()) throw FileLockError(place, fLckdErr);
  }
  Create(place.ParentRef(), is_there);
}

void ReplacementFile::Create(FSRef const& folder, bool is_private) {
  FSCatalogInfo info = {};
  info.permissions.mode = 0600;
  OSErr code = dupFNErr;
  for (int attempt = 0; attempt < 100 && code == dupFNErr; ++attempt) {
    FileName const name{ConstData(HiddenName())};
    code = FSCreateFileUnicode(&folder, name.Count(), name.Units(),
                               is_private ? kFSCatInfoPermissions : kFSCatInfoNone, &info, &file_,
                               nullptr);
  }
  ThrowError(code, place_);
}

void ReplacementFile::Write(ConstData data) {
  FileWritingPath path{FileLocation(file_)};
  FileWriter writer;
  writer.Start(path, 0);
  writer << data;
  path.Flush();
}

void ReplacementFile::TakePlace() {
  FileName const name = place_.Name();
  FSRef const folder = place_.ParentRef();
  OSErr code = FSMoveRenameObjectUnicode(&file_, &folder, name.Count(), name.Units(), 0, nullptr);
  if (code == dupFNErr) {
    FSRef const original = place_.Ref();
    code = static_cast<OSErr>(
        FSReplaceObject(&original, &file_, nullptr, nullptr, nullptr, 0, nullptr));
  }
  ThrowError(code, place_);
  is_placed_ = true;
}

ReplacementFile::~ReplacementFile() {
  if (!is_placed_) FSDeleteObject(&file_);
}

}  // namespace MacintoshPlatform
