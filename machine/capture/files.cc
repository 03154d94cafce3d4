#include "machine/capture/files.h"

#include <cerrno>

#include "machine/capture/path_walk.h"
#include "machine/live/root.h"
#include "machine/system_files.h"

namespace machine::capture {
namespace {

// Said of the path that was asked, whatever the path at which it was found, unless the document is
// at fault.
Absence Announced(Absence absence, std::string const& path, char const* where = "") {
  if (!absence.source.starts_with(kDocumentPlace)) absence.source = path;
  if (absence.where.empty()) absence.where = where;
  AnnounceMissing(absence);
  return absence;
}

class OnTheWay final : public ItemsOnTheWay {
 public:
  explicit OnTheWay(Files const& files) : files_(files) {}
  Fact<ItemKind> KindOf(std::string const& path) override {
    Fact<RecordedItem> const item = files_.ItemAt(path, Known::kKind);
    if (!item) return item.absence();
    return item->item.status.kind;
  }
  Fact<std::string> TargetOf(std::string const& path) override { return files_.TargetAt(path); }

 private:
  Files const& files_;
};

// A copy's content under the status that was recorded.
class RecordedFile final : public OpenFile {
 public:
  RecordedFile(std::unique_ptr<OpenFile> copy, ItemStatus const& status, Fork fork)
      : copy_(std::move(copy)), status_(status), fork_(fork) {}

  ItemStatus const& Status() const override { return status_; }
  // Some files do not tell their size: their copy has one.
  Fact<std::uint64_t> Size() override {
    return fork_ == Fork::kData ? Fact<std::uint64_t>(status_.bytes) : copy_->Size();
  }
  Fact<std::size_t> ReadAt(std::uint64_t offset, void* buffer, std::size_t size) override {
    return copy_->ReadAt(offset, buffer, size);
  }
  Fact<std::size_t> WriteAt(std::uint64_t offset, void const* bytes, std::size_t size) override {
    return copy_->WriteAt(offset, bytes, size);
  }
  Fact<std::uint64_t> SetSize(std::uint64_t size) override { return copy_->SetSize(size); }
  Fact<bool> Flush() override { return copy_->Flush(); }

 private:
  std::unique_ptr<OpenFile> copy_;
  ItemStatus status_;
  Fork fork_;
};

// Reads what was read when it was recorded, and nothing else.
class PartlyRecordedFile final : public OpenFile {
 public:
  PartlyRecordedFile(std::string path, ItemStatus const& status, RecordedParts parts, Absence rest)
      : path_(std::move(path)), status_(status), parts_(std::move(parts)), rest_(std::move(rest)) {}

  ItemStatus const& Status() const override { return status_; }
  Fact<std::uint64_t> Size() override { return status_.bytes; }
  Fact<std::size_t> ReadAt(std::uint64_t offset, void* buffer, std::size_t size) override {
    auto const got = parts_.Read(offset, static_cast<char*>(buffer), size);
    if (!got) return Announced(rest_, path_);
    Announce(path_, Outcome::kAnswered, *got);
    return *got;
  }
  Fact<std::size_t> WriteAt(std::uint64_t, void const*, std::size_t) override { return ReadOnly(); }
  Fact<std::uint64_t> SetSize(std::uint64_t) override { return ReadOnly(); }
  Fact<bool> Flush() override { return ReadOnly(); }

 private:
  Absence ReadOnly() const { return {Outcome::kNotSupported, path_, "read-only", EROFS}; }

  std::string const path_;
  ItemStatus const status_;
  RecordedParts const parts_;
  Absence const rest_;
};

}  // namespace

Absence Files::NotRecorded(std::string const& path) const {
  return {Outcome::kAbsent, path, kNotRecorded, ENOENT};
}

Fact<RecordedItem> Files::Over(std::string const& path, RecordedItem copy) const {
  auto const field = records_.Find(path);
  if (!field) return copy;
  return ItemIn(*field, Known::kAll, std::move(copy));
}

Fact<Item> Files::CopyAt(std::string const& path, Known wanted) const {
  Unobserved const unobserved;
  if (wanted == Known::kAll) return copies_.Describe(path, Links::kKeep);
  Fact<ItemStatus> const status = copies_.Status(path, Links::kKeep);
  if (!status) return status.absence();
  Item item;
  item.status = *status;
  return item;
}

Fact<RecordedItem> Files::ItemAt(std::string const& path, Known wanted) const {
  auto const field = records_.Find(path);
  if (!field && records_.is_partial()) {
    if (!records_.IsKnownToBeMissing(path)) return NotRecorded(path);
    return Absence{Outcome::kAbsent, path, {}, ENOENT};
  }
  RecordedItem copy;
  bool const stands_alone = field && (records_.is_partial() || StandsAlone(*field));
  if (!stands_alone) {
    Fact<Item> const item = CopyAt(path, wanted);
    if (!item) return item.absence();
    copy.item = *item;
    if (!field) return copy;
  }
  Fact<RecordedItem> recorded = ItemIn(*field, wanted, std::move(copy));
  if (!recorded) return recorded;
  if (recorded->absence) return *recorded->absence;
  if (stands_alone && recorded->known < wanted) return NotRecorded(path);
  return recorded;
}

Fact<std::string> Files::Walk(std::string const& path, Links links) const {
  OnTheWay items(*this);
  return WalkPath(items, path, links);
}

Fact<RecordedItem> Files::Find(std::string const& path, Links links, Known wanted) const {
  Fact<std::string> const place = Walk(path, links);
  if (!place) return Announced(place.absence(), path);
  Fact<RecordedItem> item = ItemAt(*place, wanted);
  if (!item) return Announced(item.absence(), path);
  Announce(path, Outcome::kAnswered);
  return item;
}

Fact<ItemStatus> Files::Status(std::string const& path, Links links) const {
  if (records_.is_empty()) return copies_.Status(path, links);
  Fact<RecordedItem> const found = Find(path, links, Known::kStatus);
  if (!found) return found.absence();
  return found->item.status;
}

Fact<Item> Files::Describe(std::string const& path, Links links) const {
  if (records_.is_empty()) return copies_.Describe(path, links);
  Fact<RecordedItem> const found = Find(path, links, Known::kAll);
  if (!found) return found.absence();
  return found->item;
}

Fact<std::string> Files::ReadLink(std::string const& path) const {
  if (records_.is_empty()) return copies_.ReadLink(path);
  Fact<std::string> target = TargetAt(path);
  if (!target) return Announced(target.absence(), path, "link");
  Announce(path, Outcome::kAnswered, target->size());
  return target;
}

Fact<std::string> Files::TargetAt(std::string const& path) const {
  Fact<std::string> const place = Walk(path, Links::kKeep);
  if (!place) return place;
  Fact<RecordedItem> const item = ItemAt(*place, Known::kKind);
  if (!item) return item.absence();
  if (item->target) return *item->target;
  if (item->item.status.kind != ItemKind::kLink) {
    return Absence{live::OutcomeOf(EINVAL), path, {}, EINVAL};
  }
  if (records_.is_partial()) return NotRecorded(path);
  Unobserved const unobserved;
  return copies_.ReadLink(*place);
}

std::optional<Fact<RecordedParts>> Files::PartsAt(std::string const& path) const {
  auto const field = records_.Find(path);
  if (!field) return std::nullopt;
  Fact<RecordedItem> item = ItemIn(*field, Known::kAll, {});
  if (!item) return Fact<RecordedParts>(item.absence());
  return std::move(item.value().parts);
}

Fact<std::unique_ptr<Folder>> Files::OpenFolder(std::string const& path) const {
  if (records_.is_empty()) return copies_.OpenFolder(path);
  Fact<std::string> const place = Walk(path, Links::kFollow);
  if (!place) return Announced(place.absence(), path);
  auto folder = OpenFolderAt(*place);
  if (!folder) return Announced(folder.absence(), path);
  Announce(path, Outcome::kAnswered);
  return folder;
}

Fact<std::unique_ptr<Folder>> Files::OpenFolderAt(std::string const& path) const {
  Fact<RecordedItem> const item = ItemAt(path, Known::kStatus);
  if (!item) return item.absence();
  if (item->item.status.kind != ItemKind::kFolder) {
    return Absence{live::OutcomeOf(ENOTDIR), path, {}, ENOTDIR};
  }
  auto const field = records_.Find(path);
  if (auto listing = field ? ListingIn(*field) : std::nullopt) {
    if (!*listing) return listing->absence();
    return MakeListedFolder(*this, path, item->item.status, std::move(*listing).value());
  }
  if (records_.is_partial()) return NotRecorded(path);
  Unobserved const unobserved;
  auto copy = copies_.OpenFolder(path);
  if (!copy) return copy.absence();
  return MakeOverlaidFolder(*this, path, item->item.status, std::move(copy).value());
}

Fact<std::unique_ptr<OpenFile>> Files::OpenFork(std::string const& path, Fork fork,
                                                Access access) const {
  if (access != Access::kRead) return FileSource::OpenFork(path, fork, access);
  if (records_.is_empty()) return copies_.OpenFork(path, fork, access);
  Fact<std::string> const place = Walk(path, Links::kFollow);
  if (!place) return Announced(place.absence(), path);
  Fact<RecordedItem> const item = ItemAt(*place, Known::kStatus);
  if (!item) return Announced(item.absence(), path);
  ItemStatus const& status = item->item.status;
  if (status.kind != ItemKind::kFile) {
    return live::AnnounceError(status.kind == ItemKind::kFolder ? EISDIR : EINVAL, path);
  }
  auto const& recorded = fork == Fork::kData ? item->content : item->resource_fork;
  bool const has_all = recorded && *recorded;
  if (fork == Fork::kData && !has_all && item->parts && *item->parts) {
    Absence const rest = recorded ? recorded->absence() : NotRecorded(*place);
    return std::unique_ptr<OpenFile>(
        std::make_unique<PartlyRecordedFile>(path, status, **item->parts, rest));
  }
  if (recorded && !*recorded) return Announced(recorded->absence(), path);
  if (!recorded && records_.is_partial()) return Announced(NotRecorded(path), path);
  auto copy = copies_.OpenFork(*place, fork, access);
  if (!copy) return copy;
  return std::unique_ptr<OpenFile>(
      std::make_unique<RecordedFile>(std::move(copy).value(), status, fork));
}

// What is too long is so even when its content was not recorded.
Fact<std::string> Files::ReadFile(std::string const& path, std::size_t most) const {
  Fact<std::string> text = FileSource::ReadFile(path, most);
  if (text || !text.absence().is_not_recorded()) return text;
  Fact<ItemStatus> const status = Status(path, Links::kFollow);
  bool const is_too_long = status && status->kind == ItemKind::kFile && status->bytes > most;
  if (!is_too_long) return text;
  return Absence{Outcome::kMalformed, path, "too long", EFBIG};
}

Fact<std::string> Files::CanonicalFolder(std::string const& path) const {
  if (records_.is_empty()) return copies_.CanonicalFolder(path);
  Fact<std::string> const place = Walk(path, Links::kFollow);
  if (!place) return Announced(place.absence(), path);
  Fact<RecordedItem> const item = ItemAt(*place, Known::kKind);
  if (!item) return Announced(item.absence(), path);
  if (item->item.status.kind != ItemKind::kFolder) return live::AnnounceError(ENOTDIR, path);
  return *place;
}

// The disk that holds the capture is not the machine's, so a copy's volume says nothing.
Fact<VolumeSpace> Files::Space(std::string const& path) const {
  Fact<std::string> const place = Walk(path, Links::kKeep);
  Fact<RecordedItem> const item = place ? Over(*place, {}) : Fact<RecordedItem>(place.absence());
  if (!item) return Announced(item.absence(), path, "volume");
  if (!item->space) return Announced(NotRecorded(path), path);
  if (!*item->space) return Announced(item->space->absence(), path, "volume");
  Announce(path, Outcome::kAnswered);
  return **item->space;
}

Fact<std::string> Files::NameInList(char const* key, char const* list, std::uint32_t number) const {
  std::string const text = std::to_string(number);
  if (facts_.Knows(key, text)) return facts_.Text(key, text);
  Fact<std::string> const names = ReadFile(list, kLargestSystemFile);
  if (!names) return names;
  if (auto const found = NameInAccounts(*names, number)) return std::string(*found);
  return Absence{Outcome::kAbsent, list, text};
}

Fact<std::string> Files::UserName(std::uint32_t user) const {
  return NameInList("UserNames", kUserListPath, user);
}

Fact<std::string> Files::GroupName(std::uint32_t group) const {
  return NameInList("GroupNames", kGroupListPath, group);
}

}  // namespace machine::capture
