#include "machine/capture/item_keys.h"
#include "machine/capture/recorded_item.h"
#include "machine/capture/recorded_time.h"
#include "machine/capture/values.h"

namespace machine::capture {
namespace {

using namespace item_keys;

Record SpaceRecord(VolumeSpace const& space) {
  RecordDictionary entries;
  for (SpaceKey const& row : kSpaceNumbers) entries.Add(row.key, RecordOfNumber(space.*row.member));
  entries.Add(kIsReadOnly, space.is_read_only);
  return entries;
}

Record ListingRecord(RecordedListing const& listing) { return RecordOfNames(listing.names); }

template <typename Value, typename Convert>
void AddFact(RecordDictionary& entries, char const* key, std::optional<Fact<Value>> const& fact,
             Convert&& convert) {
  if (fact) entries.Add(key, *fact ? convert(**fact) : RecordOf(fact->absence()));
}

// Zeros go without saying.
void AddStatus(RecordDictionary& entries, ItemStatus const& status) {
  for (NumberKey const& row : kNumbers) {
    std::uint64_t const number = row.get(status);
    if (number != 0) entries.Add(row.key, RecordOfNumber(number));
  }
  for (TimeKey const& row : kTimes) {
    bool const is_known = row.member != &ItemStatus::birth || status.has_birth;
    if (is_known) entries.Add(row.key, TextOf(status.*row.member));
  }
  if (status.is_immutable) entries.Add("Immutable", true);
}

void AddFinderDetails(RecordDictionary& entries, Item const& item) {
  std::string const info(item.finder_info.begin(), item.finder_info.end());
  if (item.has_finder_info) entries.Add("FinderInfo", RecordBytes{info});
  if (item.resource_bytes != 0) entries.Add("ResourceBytes", RecordOfNumber(item.resource_bytes));
}

}  // namespace

Record RecordOf(RecordedItem const& recorded) {
  RecordDictionary entries;
  if (recorded.absence) entries.Add("Absent", RecordOf(*recorded.absence));
  if (recorded.known != Known::kNothing) {
    ItemStatus const& status = recorded.item.status;
    entries.Add("Known", std::string(kKnownNames[static_cast<int>(recorded.known)]));
    entries.Add("Kind", std::string(kKindNames[static_cast<int>(status.kind)]));
    if (recorded.known >= Known::kStatus) AddStatus(entries, status);
    if (recorded.known == Known::kAll) AddFinderDetails(entries, recorded.item);
  }
  if (recorded.is_companion) entries.Add("IsCompanion", true);
  auto const done = [](Done) { return Record(true); };
  AddFact(entries, "Target", recorded.target, RecordOfBytes);
  AddFact(entries, "Entries", recorded.listing, ListingRecord);
  if (recorded.listing && *recorded.listing && !(*recorded.listing)->is_whole) {
    entries.Add(kHasMoreEntries, true);
  }
  AddFact(entries, "Content", recorded.content, done);
  AddFact(entries, "ResourceFork", recorded.resource_fork, done);
  AddFact(entries, "Parts", recorded.parts,
          [](RecordedParts const& parts) { return RecordOf(parts); });
  AddFact(entries, "Space", recorded.space, SpaceRecord);
  return entries;
}

}  // namespace machine::capture
