// Open forks with their marks.
#include <CoreServices/Files.h>

#include <algorithm>
#include <limits>
#include <mutex>
#include <vector>

#include "frameworks/CoreServices/file_names.h"
#include "frameworks/CoreServices/file_references.h"
#include "machine/never_destroyed.h"

namespace {

using machine::Access;
using machine::Fork;

struct OpenForkState {
  std::unique_ptr<machine::OpenFile> file;
  std::string path;
  bool is_writable;
  SInt64 mark = 0;
};

// A reference number is a place in the table, counted from 1. A fork is used by one thread.
class Forks {
 public:
  // 0 when no number is left.
  FSIORefNum Add(OpenForkState fork) {
    auto owned = std::make_unique<OpenForkState>(std::move(fork));
    std::lock_guard lock(guard_);
    auto const free = std::find(open_.begin(), open_.end(), nullptr);
    auto const number = free - open_.begin() + 1;
    if (number > std::numeric_limits<FSIORefNum>::max()) return 0;
    if (free == open_.end()) {
      open_.push_back(std::move(owned));
    } else {
      *free = std::move(owned);
    }
    return static_cast<FSIORefNum>(number);
  }
  OpenForkState* Find(FSIORefNum number) {
    std::lock_guard lock(guard_);
    if (number < 1 || static_cast<std::size_t>(number) > open_.size()) return nullptr;
    return open_[static_cast<std::size_t>(number - 1)].get();
  }
  void Remove(FSIORefNum number) {
    std::lock_guard lock(guard_);
    open_[static_cast<std::size_t>(number - 1)].reset();
  }

 private:
  std::mutex guard_;
  std::vector<std::unique_ptr<OpenForkState>> open_;
};

Forks& Open() {
  static machine::NeverDestroyed<Forks> forks;
  return *forks;
}

constexpr std::string_view kResourceForkName = "RESOURCE_FORK";

bool IsResourceForkName(UniChar const* name, UniCharCount length) {
  return std::equal(name, name + length, kResourceForkName.begin(), kResourceForkName.end());
}

// The place that a mode and an offset mean; the mode's other bits are about caching.
OSErr FindPosition(OpenForkState& fork, UInt16 mode, SInt64 offset, SInt64* position) {
  SInt64 base = 0;
  mode &= 3;
  if (mode == fsAtMark) offset = 0;
  if (mode == fsAtMark || mode == fsFromMark) base = fork.mark;
  if (mode == fsFromLEOF) {
    auto const size = fork.file->Size();
    if (!size) return CodeOf(size.absence(), fork.path);
    base = static_cast<SInt64>(*size);
  }
  SInt64 sum;
  if (__builtin_add_overflow(base, offset, &sum) || sum < 0) return posErr;
  *position = sum;
  return noErr;
}

struct Opened {
  OSErr code;
  std::unique_ptr<machine::OpenFile> file;
  bool is_writable;
};

Opened OpenFor(FoundItem const& found, Fork fork, Access access) {
  bool const writes = access == Access::kReadAndWrite;
  if (writes && (fork == Fork::kResource || found.item.status.is_locked())) {
    return {permErr, nullptr, false};
  }
  auto file = MachineFiles().OpenFork(found.path, fork, access);
  if (!file) return {CodeOf(file.absence(), found.path), nullptr, false};
  // Another file that took the place meanwhile; a link leads to one of its own.
  bool const is_link = found.item.status.kind == machine::ItemKind::kLink;
  if (!is_link && !(*file)->Status().is_same_item(found.item.status)) {
    return {fnfErr, nullptr, false};
  }
  return {noErr, std::move(file.value()), writes};
}

}  // namespace

OSErr FSGetDataForkName(HFSUniStr255* dataForkName) {
  *dataForkName = HFSUniStr255{};
  return noErr;
}

OSErr FSGetResourceForkName(HFSUniStr255* resourceForkName) {
  *resourceForkName = UnicodeName(kResourceForkName);
  return noErr;
}

OSErr FSOpenFork(FSRef const* ref, UniCharCount forkNameLength, UniChar const* forkName,
                 SInt8 permissions, FSIORefNum* forkRefNum) {
  if (permissions < fsCurPerm || permissions > fsRdWrShPerm) return paramErr;
  bool const is_resource_fork = IsResourceForkName(forkName, forkNameLength);
  if (forkNameLength != 0 && !is_resource_fork) return errFSBadForkName;
  Fork const fork = is_resource_fork ? Fork::kResource : Fork::kData;
  FoundItem const found = FindItem(ref, machine::Detail::kStatus);
  if (found.code != noErr) return found.code;
  Opened opened = {noErr, nullptr, false};
  if (permissions != fsRdPerm) opened = OpenFor(found, fork, Access::kReadAndWrite);
  // "Current" permission is what there is.
  bool const settles = permissions == fsCurPerm && opened.code != noErr;
  if (permissions == fsRdPerm || settles) opened = OpenFor(found, fork, Access::kRead);
  if (opened.code != noErr) return opened.code;
  *forkRefNum = Open().Add({std::move(opened.file), found.path, opened.is_writable});
  return *forkRefNum == 0 ? OSErr{tmfoErr} : OSErr{noErr};
}

OSErr FSReadFork(FSIORefNum forkRefNum, UInt16 positionMode, SInt64 positionOffset,
                 ByteCount requestCount, void* buffer, ByteCount* actualCount) {
  if (actualCount != nullptr) *actualCount = 0;
  OpenForkState* fork = Open().Find(forkRefNum);
  if (fork == nullptr) return rfNumErr;
  SInt64 position = 0;
  OSErr const code = FindPosition(*fork, positionMode, positionOffset, &position);
  if (code != noErr) return code;
  auto const got = fork->file->ReadAt(static_cast<UInt64>(position), buffer, requestCount);
  if (!got) return CodeOf(got.absence(), fork->path);
  fork->mark = position + static_cast<SInt64>(*got);
  if (actualCount != nullptr) *actualCount = *got;
  return *got < requestCount ? OSErr{eofErr} : OSErr{noErr};
}

OSErr FSWriteFork(FSIORefNum forkRefNum, UInt16 positionMode, SInt64 positionOffset,
                  ByteCount requestCount, void const* buffer, ByteCount* actualCount) {
  if (actualCount != nullptr) *actualCount = 0;
  OpenForkState* fork = Open().Find(forkRefNum);
  if (fork == nullptr) return rfNumErr;
  if (!fork->is_writable) return wrPermErr;
  SInt64 position = 0;
  OSErr const code = FindPosition(*fork, positionMode, positionOffset, &position);
  if (code != noErr) return code;
  auto const put = fork->file->WriteAt(static_cast<UInt64>(position), buffer, requestCount);
  if (!put) return CodeOf(put.absence(), fork->path);
  fork->mark = position + static_cast<SInt64>(*put);
  if (actualCount != nullptr) *actualCount = *put;
  return noErr;
}

OSErr FSGetForkPosition(FSIORefNum forkRefNum, SInt64* position) {
  OpenForkState const* fork = Open().Find(forkRefNum);
  if (fork == nullptr) return rfNumErr;
  *position = fork->mark;
  return noErr;
}

OSErr FSSetForkPosition(FSIORefNum forkRefNum, UInt16 positionMode, SInt64 positionOffset) {
  OpenForkState* fork = Open().Find(forkRefNum);
  if (fork == nullptr) return rfNumErr;
  return FindPosition(*fork, positionMode, positionOffset, &fork->mark);
}

OSErr FSGetForkSize(FSIORefNum forkRefNum, SInt64* forkSize) {
  OpenForkState* fork = Open().Find(forkRefNum);
  if (fork == nullptr) return rfNumErr;
  auto const size = fork->file->Size();
  if (!size) return CodeOf(size.absence(), fork->path);
  *forkSize = static_cast<SInt64>(*size);
  return noErr;
}

OSErr FSSetForkSize(FSIORefNum forkRefNum, UInt16 positionMode, SInt64 positionOffset) {
  OpenForkState* fork = Open().Find(forkRefNum);
  if (fork == nullptr) return rfNumErr;
  if (!fork->is_writable) return wrPermErr;
  SInt64 size = 0;
  OSErr const code = FindPosition(*fork, positionMode, positionOffset, &size);
  if (code != noErr) return code;
  auto const set = fork->file->SetSize(static_cast<UInt64>(size));
  if (!set) return CodeOf(set.absence(), fork->path);
  fork->mark = std::min(fork->mark, size);
  return noErr;
}

OSErr FSFlushFork(FSIORefNum forkRefNum) {
  OpenForkState* fork = Open().Find(forkRefNum);
  if (fork == nullptr) return rfNumErr;
  auto const flushed = fork->file->Flush();
  return flushed ? OSErr{noErr} : CodeOf(flushed.absence(), fork->path);
}

OSErr FSCloseFork(FSIORefNum forkRefNum) {
  if (Open().Find(forkRefNum) == nullptr) return rfNumErr;
  Open().Remove(forkRefNum);
  return noErr;
}
