#include "portable/macintosh/file_loop.h"

#include <algorithm>

#include "portable/file_errors.h"
#include "portable/macintosh/folder_iterator.h"

namespace MacintoshPlatform {

void FileLoop::Start(FileLocation const& directory, char const* pattern) {
  directory_ = directory;
  pattern_.reset();
  if (pattern != nullptr) pattern_ = pattern;
  children_.clear();
  next_ = 0;
  is_done_ = !directory_.Exists();
  if (is_done_) return;
  ReadChildren();
  ++*this;
}

void FileLoop::ReadChildren() {
  FolderIterator iterator(directory_.Ref());
  OSErr code = iterator.Code();
  while (code == noErr) {
    // By four and with the spare room that the list has then, so that it is read into whole.
    std::size_t const count = children_.size();
    if (children_.capacity() < count + 4) children_.reserve(std::max(count + 4, 2 * count));
    children_.resize(children_.capacity());
    auto const [added, result] =
        iterator.Read(children_.size() - count, kFSCatInfoNone, nullptr, children_.data() + count);
    children_.resize(count + added);
    code = result;
  }
  if (code != errFSNoMoreItems) {
    is_done_ = true;
    throw FileLoopFailed(directory_, code);
  }
}

FileLoop& FileLoop::operator++() {
  while (next_ < children_.size()) {
    if (TakeItem(children_[next_++])) return *this;
  }
  is_done_ = true;
  return *this;
}

bool FileLoop::TakeItem(FSRef const& child) {
  try {
    FSCatalogInfo catalog;
    HFSUniStr255 name;
    if (FSGetCatalogInfo(&child, MacFileInfo::kFields, &catalog, &name, nullptr, nullptr) !=
        noErr) {
      return false;
    }
    FileName const file_name(name);
    if (pattern_ && !pattern_->empty() && !file_name.MatchesWildCard(pattern_->c_str())) {
      return false;
    }
    current_ = FileItem(FileLocation(directory_, file_name), MacFileInfo(catalog));
    return true;
  } catch (DebuggableException const&) {
    return false;
  }
}

}  // namespace MacintoshPlatform
