#include "machine/capture/recorded_item.h"

#include "machine/capture/item_keys.h"
#include "machine/capture/recorded_time.h"

namespace machine::capture {
namespace {

using namespace item_keys;

template <typename Choice, std::size_t count>
Fact<Choice> ChoiceIn(Field const& field, char const* const (&names)[count]) {
  auto const* text = field.As<std::string>();
  for (std::size_t i = 0; text != nullptr && i < count; ++i) {
    if (*text == names[i]) return static_cast<Choice>(i);
  }
  return field.Malformed("unknown");
}

// Reads one key after the other until one is malformed.
class ItemReader {
 public:
  ItemReader(Field const& field, RecordedItem item) : field_(field), item_(std::move(item)) {}

  Fact<RecordedItem> Read(Known wanted) {
    ReadKind();
    if (wanted > Known::kKind) {
      ReadStatus();
      ReadFinderDetails();
      ReadContents();
    }
    if (failure_) return *failure_;
    return std::move(item_);
  }

 private:
  template <typename Read, typename Store>
  void Take(char const* key, Read&& read, Store&& store) {
    Field const field = field_[key];
    if (!field.exists() || failure_) return;
    auto fact = read(field);
    if (!fact) failure_ = fact.absence();
    if (fact) store(*std::move(fact));
  }
  // What may be recorded as absent too.
  template <typename Value, typename Read>
  void TakeFact(char const* key, std::optional<Fact<Value>>& kept, Read&& read) {
    if (Field const field = field_[key]; IsAbsence(field)) {
      kept.emplace(AbsenceIn(field, {}));
    } else {
      Take(key, read, [&](Value value) { kept.emplace(std::move(value)); });
    }
  }
  void TakeTruth(char const* key, bool& kept) {
    Take(
        key, [](Field const& field) { return field.Truth(); }, [&](bool truth) { kept = truth; });
  }

  void ReadKind();
  void ReadStatus();
  void ReadFinderDetails();
  void ReadContents();

  Field const& field_;
  RecordedItem item_;
  std::optional<Absence> failure_;
};

void ItemReader::ReadKind() {
  if (Field const absent = field_["Absent"]; absent.exists()) {
    item_.absence = AbsenceIn(absent, {});
  }
  Take(
      "Known", [](Field const& field) { return ChoiceIn<Known>(field, kKnownNames); },
      [&](Known known) { item_.known = known; });
  Take(
      "Kind", [](Field const& field) { return ChoiceIn<ItemKind>(field, kKindNames); },
      [&](ItemKind kind) { item_.item.status.kind = kind; });
  TakeFact("Target", item_.target, [](Field const& field) { return field.Text(); });
}

void ItemReader::ReadStatus() {
  ItemStatus& status = item_.item.status;
  for (NumberKey const& row : kNumbers) {
    Take(
        row.key, [&](Field const& field) { return field.Unsigned(row.most); },
        [&](std::uint64_t number) { row.set(status, number); });
  }
  for (TimeKey const& row : kTimes) {
    Take(row.key, TimeIn, [&](FileTime time) { status.*row.member = time; });
  }
  if (field_[kBorn].exists()) status.has_birth = true;
  TakeTruth("Immutable", status.is_immutable);
}

void ItemReader::ReadFinderDetails() {
  Item& item = item_.item;
  Take(
      "FinderInfo", [](Field const& field) { return field.Text(); },
      [&](std::string const& bytes) {
        item.has_finder_info = true;
        item.finder_info = {};
        bytes.copy(reinterpret_cast<char*>(item.finder_info.data()), item.finder_info.size());
      });
  Take(
      "ResourceBytes", [](Field const& field) { return field.Unsigned(UINT64_MAX); },
      [&](std::uint64_t bytes) { item.resource_bytes = bytes; });
  TakeTruth("IsCompanion", item_.is_companion);
}

Fact<Done> DoneIn(Field const& field) {
  Fact<bool> const truth = field.Truth();
  if (!truth) return truth.absence();
  if (!*truth) return field.Malformed("not true");
  return Done();
}

Fact<RecordedListing> NamesIn(Field const& field) {
  RecordedListing listing;
  for (std::size_t i = 0; i < field.count(); ++i) {
    Field const item = field[i];
    Fact<std::string> name = item.Text();
    if (!name) return name.absence();
    bool const is_name = !name->empty() && *name != "." && *name != ".." &&
                         name->find('/') == std::string::npos &&
                         name->find('\0') == std::string::npos;
    if (!is_name) return item.Malformed("not a name");
    listing.names.push_back(*std::move(name));
  }
  if (field.As<RecordArray>() == nullptr) return field.Malformed("not an array");
  return listing;
}

Fact<VolumeSpace> SpaceIn(Field const& field) {
  VolumeSpace space;
  for (SpaceKey const& row : kSpaceNumbers) {
    Fact<std::uint64_t> const number = field[row.key].Unsigned(UINT64_MAX);
    if (!number) return number.absence();
    space.*row.member = *number;
  }
  Fact<bool> const is_read_only = field[kIsReadOnly].Truth();
  if (!is_read_only) return is_read_only.absence();
  space.is_read_only = *is_read_only;
  return space;
}

void ItemReader::ReadContents() {
  TakeFact("Content", item_.content, DoneIn);
  TakeFact("ResourceFork", item_.resource_fork, DoneIn);
  TakeFact("Parts", item_.parts, PartsIn);
  TakeFact("Space", item_.space, SpaceIn);
}

}  // namespace

Known KnownBy(Detail detail) {
  switch (detail) {
    case Detail::kKind:
      return Known::kKind;
    case Detail::kStatus:
      return Known::kStatus;
    case Detail::kAll:
      break;
  }
  return Known::kAll;
}

Fact<RecordedItem> ItemIn(Field const& field, Known wanted, RecordedItem copy) {
  if (field.As<RecordDictionary>() == nullptr) return field.Malformed("not a dictionary");
  return ItemReader(field, std::move(copy)).Read(wanted);
}

std::optional<Fact<RecordedListing>> ListingIn(Field const& field) {
  Field const entries = field["Entries"], more = field[kHasMoreEntries];
  if (!entries.exists()) return {};
  if (IsAbsence(entries)) return AbsenceIn(entries, {});
  Fact<RecordedListing> listing = NamesIn(entries);
  if (!listing || !more.exists()) return listing;
  Fact<bool> const has_more = more.Truth();
  if (!has_more) return has_more.absence();
  listing.value().is_whole = !*has_more;
  return listing;
}

bool StandsAlone(Field const& field) { return field["Known"].exists() || field["Absent"].exists(); }

}  // namespace machine::capture
