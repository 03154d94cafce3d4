#include "machine/capture/recorded_parts.h"

#include "machine/live/text.h"

namespace machine::capture {

// Whoever reads the same again finds it by its offset, so that nothing is joined.
void RecordedParts::Keep(std::uint64_t offset, std::string_view bytes, std::size_t wanted) {
  if (wanted == 0) return;
  std::string& part = parts_[offset];
  if (bytes.size() > part.size()) {
    bytes_ += bytes.size() - part.size();
    part = bytes;
  }
  if (bytes.size() < wanted) parts_.try_emplace(offset + bytes.size());
}

std::optional<std::size_t> RecordedParts::Read(std::uint64_t offset, char* buffer,
                                               std::size_t size) const {
  std::size_t done = 0;
  while (done < size) {
    std::uint64_t const place = offset + done;
    auto part = parts_.upper_bound(place);
    if (part == parts_.begin()) return std::nullopt;
    --part;
    if (part->second.empty()) return done;
    std::uint64_t const within = place - part->first;
    if (within >= part->second.size()) return std::nullopt;
    done += part->second.copy(buffer + done, size - done, within);
  }
  return done;
}

Record RecordOf(RecordedParts const& parts) {
  RecordDictionary entries;
  for (auto const& [offset, part] : parts.parts_) {
    entries.Add(std::to_string(offset), RecordBytes{part});
  }
  return entries;
}

Fact<RecordedParts> PartsIn(Field const& field) {
  auto const* entries = field.As<RecordDictionary>();
  if (entries == nullptr) return field.Malformed("not a dictionary");
  RecordedParts parts;
  for (auto const& [key, value] : entries->entries()) {
    auto const offset = live::ParseNumber<std::uint64_t>(key);
    if (!offset || *offset > INT64_MAX) return field[key].Malformed("not an offset");
    Fact<std::string> part = field[key].Text();
    if (!part) return part.absence();
    parts.bytes_ += part->size();
    parts.parts_[*offset] = *std::move(part);
  }
  return parts;
}

}  // namespace machine::capture
