#include <algorithm>

#include "machine/capture/registry.h"
#include "machine/capture/registry_form.h"
#include "machine/capture/values.h"
#include "machine/live/files.h"

namespace machine::capture {
namespace {

constexpr std::size_t kLargestPlane = std::size_t{1} << 28, kLongestName = 127;

// So that it names a file in the folder, and a plane.
bool IsPlaneName(std::string_view name) {
  auto const is_odd = [](char byte) { return byte == '/' || byte == '\0'; };
  return !name.empty() && name.size() <= kLongestName && std::ranges::none_of(name, is_odd);
}

std::string FileOf(std::string_view plane) {
  return std::string(kRegistryFolder) + "/" + std::string(plane) + kPlaneEnding;
}

}  // namespace

RegistryPlanes::RegistryPlanes(Facts const& facts, std::shared_ptr<live::Root const> folder,
                               RecordReader reader)
    : folder_(std::move(folder)), reader_(reader) {
  if (auto const* above = facts[kRegistryKey][kRegistryRoot].As<RecordDictionary>()) {
    above_ = *above;
  }
  auto const* const absent = facts["Absent"].As<RecordDictionary>();
  if (absent == nullptr) return;
  for (auto const& [key, value] : absent->entries()) {
    if (!key.starts_with(kRegistryKey)) continue;
    Absence const unknown{Outcome::kAbsent, key, kNotRecorded};
    absences_.insert_or_assign(key, AbsenceIn(Field(&value, key), unknown));
  }
}

Absence RegistryPlanes::Missing(std::string_view plane, std::string_view path) const {
  std::string const whole = kRegistryKey, of_plane = whole + "." + KeyOfBytes(plane);
  Absence absence{Outcome::kAbsent, FileOf(plane), path.empty() ? kNotRecorded : std::string(path)};
  for (std::string const& key : {of_plane + ":" + KeyOfBytes(path), of_plane, whole}) {
    auto const found = absences_.find(key);
    if (found == absences_.end()) continue;
    absence = found->second;
    break;
  }
  Announce(absence.source, absence.reason);
  return absence;
}

Fact<SharedPlane> RegistryPlanes::Read(std::string const& plane) const {
  if (!folder_ || !IsPlaneName(plane)) return Missing(plane);
  std::string const source = FileOf(plane);
  Fact<std::string> const bytes = live::Files(*folder_, true).ReadFile("/" + source, kLargestPlane);
  if (!bytes && bytes.outcome() == Outcome::kAbsent) return Missing(plane);
  if (!bytes) return bytes.absence();
  Fact<Record> document = reader_(*bytes, source);
  if (!document) return document.absence();
  return RegistryPlane::Make(plane, source, std::move(document).value());
}

Fact<SharedPlane> RegistryPlanes::Find(std::string_view plane) const {
  std::string const name(plane);
  std::lock_guard const lock(guard_);
  auto const known = planes_.find(name);
  if (known == planes_.end()) {
    Fact<SharedPlane> read = Read(name);
    // Anyone may ask for any name: only files are worth keeping.
    if (read || read.outcome() != Outcome::kAbsent) planes_.emplace(name, read);
    return read;
  }
  Announce(FileOf(plane), known->second.outcome());
  return known->second;
}

Fact<RecordDictionary> RegistryPlanes::Above() const {
  if (above_) return *above_;
  if (!folder_) return Missing(kRegistryRoot);
  Fact<std::vector<std::string>> files = folder_->List("/" + std::string(kRegistryFolder));
  if (!files) return Missing(kRegistryRoot);
  std::ranges::sort(files.value());
  for (std::string_view file : *files) {
    if (!file.ends_with(kPlaneEnding)) continue;
    file.remove_suffix(std::string_view(kPlaneEnding).size());
    Fact<SharedPlane> const plane = Find(file);
    if (plane && (*plane)->above() != nullptr) return *(*plane)->above();
  }
  return RecordDictionary();
}

}  // namespace machine::capture
