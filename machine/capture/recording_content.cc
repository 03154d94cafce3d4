#include "machine/capture/recording_content.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace machine::capture {
namespace {

// Does not begin with what is far too long. Of small files the size may say too much: in /sys it is
// that of a page.
Fact<std::string> ReadWithin(OpenFile& file, std::string const& path, std::uint64_t most) {
  constexpr std::uint64_t kLargestPage = 1 << 16;
  Fact<std::uint64_t> const size = file.Size();
  if (size && *size > std::max(most, kLargestPage)) {
    return Absence{Outcome::kMalformed, path, "too long", EFBIG};
  }
  return ReadWhole(file, path, most);
}

// Null where it cannot be kept, which is remembered instead.
Content KeepWhole(RecordedItems& items, RecordedPlace const& at, OpenFile& file) {
  Fact<std::string> text = ReadWithin(file, at.path, items.RoomForContent(at.place, at.fork));
  bool const is_too_large = !text && text.absence().error == EFBIG;
  if (is_too_large) items.KeepContentTooLarge(at.place, at.fork);
  if (!text && !is_too_large) items.KeepContentAbsence(at.place, at.fork, text.absence());
  if (!text) return nullptr;
  auto content = std::make_shared<std::string const>(std::move(text).value());
  items.KeepContent(at.place, at.fork, content);
  return content;
}

// What was read at once gives all further answers, so that they and the recording are the same.
class RecordedContent final : public OpenFile {
 public:
  RecordedContent(RecordedItems& items, RecordedPlace place, std::unique_ptr<OpenFile> asked)
      : items_(items), place_(std::move(place)), asked_(std::move(asked)) {}

  void ReadAll() {
    has_tried_all_ = true;
    content_ = KeepWhole(items_, place_, *asked_);
  }

  ItemStatus const& Status() const override { return asked_->Status(); }
  Fact<std::uint64_t> Size() override { return asked_->Size(); }
  Fact<std::size_t> ReadAt(std::uint64_t offset, void* buffer, std::size_t size) override {
    if (content_ == nullptr) return ReadPart(offset, static_cast<char*>(buffer), size);
    if (offset >= content_->size()) return std::size_t{0};
    return content_->copy(static_cast<char*>(buffer), size, static_cast<std::size_t>(offset));
  }
  Fact<std::size_t> WriteAt(std::uint64_t offset, void const* bytes, std::size_t size) override {
    return asked_->WriteAt(offset, bytes, size);
  }
  Fact<std::uint64_t> SetSize(std::uint64_t size) override { return asked_->SetSize(size); }
  Fact<bool> Flush() override { return asked_->Flush(); }

 private:
  Fact<std::size_t> ReadPart(std::uint64_t offset, char* buffer, std::size_t size) {
    Fact<std::size_t> const got = asked_->ReadAt(offset, buffer, size);
    bool const is_kept =
        has_tried_all_ || !got || items_.KeepPart(place_.place, offset, {buffer, *got}, size);
    if (!is_kept) ReadAll();
    return got;
  }

  RecordedItems& items_;
  RecordedPlace const place_;
  std::unique_ptr<OpenFile> const asked_;
  Content content_;  // null until all is read, or where that cannot be kept
  bool has_tried_all_ = false;
};

}  // namespace

Fact<std::unique_ptr<OpenFile>> RecordContent(RecordedItems& items, RecordedPlace place,
                                              std::unique_ptr<OpenFile> asked) {
  bool const has_parts =
      place.fork == Fork::kData && items.HasParts(place.place, asked->Status().bytes);
  auto file = std::make_unique<RecordedContent>(items, std::move(place), std::move(asked));
  if (!has_parts) file->ReadAll();
  return std::unique_ptr<OpenFile>(std::move(file));
}

}  // namespace machine::capture
