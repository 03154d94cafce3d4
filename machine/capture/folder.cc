// Folders of a capture, entry by entry.
#include <cerrno>

#include "machine/capture/files.h"
#include "machine/live/item.h"
#include "machine/live/root.h"

namespace machine::capture {
namespace {

// What the two kinds of folder share: an entry and the folders within.
class CapturedFolder : public Folder {
 public:
  CapturedFolder(Files const& files, std::string path, ItemStatus const& status)
      : files_(files), path_(std::move(path)), status_(status) {}

  ItemStatus const& Status() const override { return status_; }
  Fact<std::unique_ptr<Folder>> OpenFolder(std::string_view name) override;
  Fact<std::size_t> ReadStart(std::string_view name, void* buffer, std::size_t size) override;
  void Rest() override {}

 protected:
  Absence Failure(Absence absence, std::string const& path) const {
    if (!absence.source.starts_with(kDocumentPlace)) absence.source = path;
    AnnounceMissing(absence);
    return absence;
  }

  Files const& files_;
  std::string const path_;
  ItemStatus const status_;
  FolderEntry entry_;
};

Fact<std::unique_ptr<Folder>> CapturedFolder::OpenFolder(std::string_view name) {
  std::string const path = live::PathIn(path_, name);
  bool const is_name = !name.empty() && name != "." && name != ".." &&
                       name.find('/') == std::string_view::npos &&
                       name.find('\0') == std::string_view::npos;
  if (!is_name) return live::AnnounceError(EINVAL, path);
  auto folder = files_.OpenFolderAt(path);
  if (!folder) return Failure(folder.absence(), path);
  Announce(path, Outcome::kAnswered);
  return folder;
}

// Of what was recorded or copied as a whole, the start is read like the rest.
Fact<std::size_t> CapturedFolder::ReadStart(std::string_view name, void* buffer, std::size_t size) {
  std::string const path = live::PathIn(path_, name);
  auto const parts = files_.PartsAt(path);
  if (!parts) return Folder::ReadStart(name, buffer, size);
  if (!*parts) return Failure(parts->absence(), path);
  auto const got = (*parts)->Read(0, static_cast<char*>(buffer), size);
  if (!got) return Failure({Outcome::kAbsent, path, kNotRecorded}, path);
  Announce(path, Outcome::kAnswered, *got);
  return *got;
}

class ListedFolder final : public CapturedFolder {
 public:
  ListedFolder(Files const& files, std::string path, ItemStatus const& status,
               RecordedListing listing)
      : CapturedFolder(files, std::move(path), status), listing_(std::move(listing)) {}

  Fact<FolderEntry const*> Next(Detail detail) override;

 private:
  RecordedListing const listing_;
  std::size_t at_ = 0;
};

Fact<FolderEntry const*> ListedFolder::Next(Detail detail) {
  if (at_ == listing_.names.size()) {
    if (listing_.is_whole) return static_cast<FolderEntry const*>(nullptr);
    return Failure({Outcome::kAbsent, {}, kNotRecorded}, path_);
  }
  std::string const& name = listing_.names[at_++];
  std::string const path = live::PathIn(path_, name);
  Fact<RecordedItem> const found = files_.ItemAt(path, KnownBy(detail));
  if (!found) return Failure(found.absence(), path);
  entry_.name = name;
  entry_.item = found->item;
  entry_.is_companion = detail != Detail::kKind && found->is_companion;
  if (detail != Detail::kKind) Announce(path, Outcome::kAnswered);
  return &entry_;
}

class OverlaidFolder final : public CapturedFolder {
 public:
  OverlaidFolder(Files const& files, std::string path, ItemStatus const& status,
                 std::unique_ptr<Folder> copy)
      : CapturedFolder(files, std::move(path), status), copy_(std::move(copy)) {}

  Fact<FolderEntry const*> Next(Detail detail) override;
  void Rest() override { copy_->Rest(); }

 private:
  std::unique_ptr<Folder> copy_;
};

Fact<FolderEntry const*> OverlaidFolder::Next(Detail detail) {
  for (;;) {
    Fact<FolderEntry const*> const next = copy_->Next(detail);
    if (!next || *next == nullptr) return next;
    RecordedItem copy;
    copy.item = (*next)->item;
    copy.is_companion = (*next)->is_companion;
    std::string const path = live::PathIn(path_, (*next)->name);
    Fact<RecordedItem> const found = files_.Over(path, std::move(copy));
    if (!found) return Failure(found.absence(), path);
    if (found->absence) continue;
    entry_.name = (*next)->name;
    entry_.item = found->item;
    entry_.is_companion = found->is_companion;
    return &entry_;
  }
}

}  // namespace

std::unique_ptr<Folder> MakeListedFolder(Files const& files, std::string path,
                                         ItemStatus const& status, RecordedListing listing) {
  return std::make_unique<ListedFolder>(files, std::move(path), status, std::move(listing));
}

std::unique_ptr<Folder> MakeOverlaidFolder(Files const& files, std::string path,
                                           ItemStatus const& status, std::unique_ptr<Folder> copy) {
  return std::make_unique<OverlaidFolder>(files, std::move(path), status, std::move(copy));
}

}  // namespace machine::capture
