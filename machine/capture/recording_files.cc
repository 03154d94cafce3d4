// Files that are asked through a recorder.
#include <cerrno>

#include "machine/capture/recording.h"
#include "machine/capture/recording_content.h"
#include "machine/capture/values.h"
#include "machine/live/item.h"

namespace machine::capture {
namespace {

// Remembers every entry, and their names once it is left.
class RecordingFolder final : public Folder {
 public:
  RecordingFolder(RecordedItems& items, std::string place, std::unique_ptr<Folder> asked)
      : items_(items), place_(std::move(place)), asked_(std::move(asked)) {
    listing_.is_whole = false;
    Item item;
    item.status = asked_->Status();
    items_.KeepItem(place_, Known::kStatus, item);
  }
  ~RecordingFolder() override { items_.KeepListing(place_, std::move(listing_)); }

  ItemStatus const& Status() const override { return asked_->Status(); }
  void Rest() override { asked_->Rest(); }

  Fact<FolderEntry const*> Next(Detail detail) override {
    Fact<FolderEntry const*> const next = asked_->Next(detail);
    if (next && *next == nullptr) listing_.is_whole = true;
    if (!next || *next == nullptr) return next;
    FolderEntry const& entry = **next;
    listing_.names.emplace_back(entry.name);
    items_.KeepItem(live::PathIn(place_, entry.name), KnownBy(detail), entry.item,
                    entry.is_companion);
    return next;
  }

  Fact<std::size_t> ReadStart(std::string_view name, void* buffer, std::size_t size) override {
    if (!items_.limits().has_parts) return Folder::ReadStart(name, buffer, size);
    Fact<std::size_t> const got = asked_->ReadStart(name, buffer, size);
    std::string const place = live::PathIn(place_, name);
    if (got) {
      std::string_view const start(static_cast<char const*>(buffer), *got);
      if (!items_.KeepPart(place, 0, start, size)) items_.KeepContentTooLarge(place, Fork::kData);
    } else if (got.outcome() != Outcome::kNotSupported) {
      items_.KeepContentAbsence(place, Fork::kData, got.absence());
    }
    return got;
  }

  Fact<std::unique_ptr<Folder>> OpenFolder(std::string_view name) override {
    return Recorded(items_, live::PathIn(place_, name), asked_->OpenFolder(name));
  }

  static Fact<std::unique_ptr<Folder>> Recorded(RecordedItems& items, std::string place,
                                                Fact<std::unique_ptr<Folder>> folder) {
    if (!folder) return folder;
    return std::unique_ptr<Folder>(
        std::make_unique<RecordingFolder>(items, std::move(place), std::move(folder).value()));
  }

 private:
  RecordedItems& items_;
  std::string const place_;
  std::unique_ptr<Folder> const asked_;
  RecordedListing listing_;
};

class RecordingFiles final : public FileSource {
 public:
  explicit RecordingFiles(Recording& recording)
      : asked_(recording.asked->Files()), facts_(recording.facts), items_(recording.items) {}

  Fact<ItemStatus> Status(std::string const& path, Links links) const override;
  Fact<Item> Describe(std::string const& path, Links links) const override;
  Fact<std::string> ReadLink(std::string const& path) const override;
  Fact<std::unique_ptr<Folder>> OpenFolder(std::string const& path) const override;
  Fact<std::unique_ptr<OpenFile>> OpenFork(std::string const& path, Fork fork,
                                           Access access) const override;
  Fact<std::string> ReadFile(std::string const& path, std::size_t most) const override;
  Fact<std::string> CanonicalFolder(std::string const& path) const override;
  Fact<VolumeSpace> Space(std::string const& path) const override;
  Fact<std::string> UserName(std::uint32_t user) const override {
    return facts_.Passed("UserNames", std::to_string(user), asked_.UserName(user), RecordOfBytes);
  }
  Fact<std::string> GroupName(std::uint32_t group) const override {
    return facts_.Passed("GroupNames", std::to_string(group), asked_.GroupName(group),
                         RecordOfBytes);
  }

  // Changes are none of the recording's business.
  bool is_read_only() const override { return asked_.is_read_only(); }
  Fact<Done> CreateFile(std::string const& path, std::uint32_t mode) const override {
    return asked_.CreateFile(path, mode);
  }
  Fact<Done> CreateFolder(std::string const& path, std::uint32_t mode) const override {
    return asked_.CreateFolder(path, mode);
  }
  Fact<Done> Remove(std::string const& path) const override { return asked_.Remove(path); }
  Fact<Done> Move(std::string const& from, std::string const& to) const override {
    return asked_.Move(from, to);
  }
  Fact<Done> Copy(std::string const& from, std::string const& to) const override {
    return asked_.Copy(from, to);
  }
  Fact<Done> Replace(std::string const& place, std::string const& replacement) const override {
    return asked_.Replace(place, replacement);
  }
  Fact<Done> SetLocked(std::string const& path, bool locked) const override {
    return asked_.SetLocked(path, locked);
  }
  Fact<Done> SetFinderInfo(std::string const& path, FinderInfo const& info) const override {
    return asked_.SetFinderInfo(path, info);
  }
  Fact<Done> SetMode(std::string const& path, std::uint32_t mode) const override {
    return asked_.SetMode(path, mode);
  }
  Fact<Done> SetTimes(std::string const& path, FileTime const& access,
                      FileTime const& modification) const override {
    return asked_.SetTimes(path, access, modification);
  }
  Fact<UniqueFile> MakeUniqueFile(std::string const& pattern) const override {
    return asked_.MakeUniqueFile(pattern);
  }
  Fact<std::string> MakeUniqueFolder(std::string const& pattern) const override {
    return asked_.MakeUniqueFolder(pattern);
  }

 private:
  // Remembers what a path leads to. A way that leads nowhere was remembered while it was walked.
  void Keep(std::string const& path, Links links, Known known, Fact<Item> const& item) const {
    Fact<std::string> const place = items_.Walk(path, links);
    if (!place) return;
    if (item) items_.KeepItem(*place, known, *item);
    if (!item) items_.KeepAbsence(*place, item.absence());
  }

  FileSource const& asked_;
  RecordedFacts& facts_;
  RecordedItems& items_;
};

Fact<ItemStatus> RecordingFiles::Status(std::string const& path, Links links) const {
  Fact<ItemStatus> status = asked_.Status(path, links);
  Item item;
  if (status) item.status = *status;
  Keep(path, links, Known::kStatus, status ? Fact<Item>(item) : Fact<Item>(status.absence()));
  return status;
}

Fact<Item> RecordingFiles::Describe(std::string const& path, Links links) const {
  Fact<Item> item = asked_.Describe(path, links);
  Keep(path, links, Known::kAll, item);
  return item;
}

// Of what is no link only that is remembered.
Fact<std::string> RecordingFiles::ReadLink(std::string const& path) const {
  Fact<std::string> target = asked_.ReadLink(path);
  Fact<std::string> const place = items_.Walk(path, Links::kKeep);
  if (!place) return target;
  Unobserved const unobserved;
  Fact<ItemStatus> const status = Status(*place, Links::kKeep);
  if (status && status->kind == ItemKind::kLink) items_.KeepTarget(*place, target);
  return target;
}

Fact<std::unique_ptr<Folder>> RecordingFiles::OpenFolder(std::string const& path) const {
  auto folder = asked_.OpenFolder(path);
  Fact<std::string> const place = items_.Walk(path, Links::kFollow);
  if (!place) return folder;
  if (!folder) items_.KeepListing(*place, folder.absence());
  return RecordingFolder::Recorded(items_, *place, std::move(folder));
}

Fact<std::unique_ptr<OpenFile>> RecordingFiles::OpenFork(std::string const& path, Fork fork,
                                                         Access access) const {
  auto file = asked_.OpenFork(path, fork, access);
  if (access != Access::kRead) return file;
  Fact<std::string> const place = items_.Walk(path, Links::kFollow);
  if (!place) return file;
  if (!file) items_.KeepContentAbsence(*place, fork, file.absence());
  if (!file) return file;
  Item item;
  item.status = (*file)->Status();
  items_.KeepItem(*place, Known::kStatus, item);
  return RecordContent(items_, {path, *place, fork}, std::move(file).value());
}

Fact<std::string> RecordingFiles::ReadFile(std::string const& path, std::size_t most) const {
  Fact<std::string> text = asked_.ReadFile(path, most);
  Fact<std::string> const place = items_.Walk(path, Links::kFollow);
  if (!place) return text;
  if (text) items_.KeepContent(*place, Fork::kData, std::make_shared<std::string const>(*text));
  // Too long for whoever asked, which the size tells as well.
  bool const is_too_long = !text && text.absence().error == EFBIG;
  if (!text && !is_too_long) items_.KeepContentAbsence(*place, Fork::kData, text.absence());
  return text;
}

// The way tells it all.
Fact<std::string> RecordingFiles::CanonicalFolder(std::string const& path) const {
  Fact<std::string> folder = asked_.CanonicalFolder(path);
  items_.Walk(path, Links::kFollow);
  return folder;
}

Fact<VolumeSpace> RecordingFiles::Space(std::string const& path) const {
  Fact<VolumeSpace> space = asked_.Space(path);
  Fact<std::string> const place = items_.Walk(path, Links::kKeep);
  if (place) items_.KeepSpace(*place, space);
  return space;
}

}  // namespace

std::unique_ptr<FileSource const> MakeRecordingFiles(Recording& recording) {
  return std::make_unique<RecordingFiles>(recording);
}

}  // namespace machine::capture
