#include "machine/capture/taken_content.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>

#include "machine/live/root.h"

namespace machine::capture {
namespace {

constexpr int kMostTries = 3;

bool IsSameTime(FileTime const& one, FileTime const& other) {
  return one.seconds == other.seconds && one.nanoseconds == other.nanoseconds;
}

// The times of files that tell no size, such as those of /proc, mean nothing.
bool IsSameState(ItemStatus const& before, ItemStatus const& after) {
  if (!before.is_same_item(after) || before.bytes != after.bytes) return false;
  return before.bytes == 0 || (IsSameTime(before.modification, after.modification) &&
                               IsSameTime(before.change, after.change));
}

Absence NotTaken(std::string const& path, std::string const& why) {
  return {Outcome::kAbsent, path, std::string(kNotRecorded) + ": " + why, 0};
}

Absence Unwritten(std::string const& path) {
  Absence absence = NotTaken(path, std::strerror(errno));
  absence.error = errno;
  return absence;
}

}  // namespace

bool TextSink::Restart() {
  text_.clear();
  return true;
}

bool TextSink::Add(std::string_view bytes) {
  if (bytes.size() > most_ - text_.size()) {
    errno = EFBIG;
    return false;
  }
  text_ += bytes;
  return true;
}

Absence ContentTaker::TooLarge(std::string const& path) const {
  bool const is_by_itself = most_of_file_ <= room_;
  Absence absence = NotTaken(path, "larger than " + std::to_string(Most()) + " bytes" +
                                       (is_by_itself ? "" : ", which were left of all"));
  absence.error = EFBIG;
  return absence;
}

Fact<std::uint64_t> ContentTaker::Copy(OpenFile& file, std::string const& path, std::uint64_t most,
                                       ContentSink& sink) const {
  std::string piece(std::size_t{1} << 17, '\0');
  if (!sink.Restart()) return Unwritten(path);
  std::uint64_t copied = 0;
  while (copied < most) {
    std::size_t const size = std::min<std::uint64_t>(piece.size(), most - copied);
    Fact<std::size_t> const got = file.ReadAt(copied, piece.data(), size);
    if (!got) return got.absence();
    if (*got == 0) break;
    if (!sink.Add({piece.data(), *got})) return Unwritten(path);
    copied += *got;
  }
  return copied;
}

// A file that is written to meanwhile is copied again; one that never rests, such as a log, is kept
// as far as it went when it was looked at last.
Fact<Done> ContentTaker::Take(std::string const& path, ContentSink& sink, RecordedItem& item) {
  for (int attempt = 1; attempt <= kMostTries; ++attempt) {
    Fact<ItemStatus> const before = asked_.Status(path, Links::kKeep);
    if (!before) return before.absence();
    if (before->kind != ItemKind::kFile) break;
    item.item.status = *before;
    if (before->bytes > Most()) return TooLarge(path);
    auto const file = asked_.OpenFork(path, Fork::kData, Access::kRead);
    if (!file) return file.absence();
    if (!(*file)->Status().is_same_item(*before)) continue;
    bool const has_size = before->bytes != 0;
    std::uint64_t const most = has_size ? before->bytes : Most() + (Most() < UINT64_MAX ? 1 : 0);
    Fact<std::uint64_t> const copied = Copy(**file, path, most, sink);
    if (!copied) return copied.absence();
    if (*copied > Most()) return TooLarge(path);
    Fact<ItemStatus> const after = asked_.Status(path, Links::kKeep);
    bool const is_same = after && IsSameState(*before, *after);
    if (!is_same && attempt < kMostTries) continue;
    room_ -= *copied;
    if (!is_same) changed_.push_back(path);
    if (!is_same && has_size) item.item.status.bytes = *copied;
    return Done();
  }
  return NotTaken(path, "became another file while it was taken");
}

}  // namespace machine::capture
