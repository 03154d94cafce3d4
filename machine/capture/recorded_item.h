// What a capture keeps of an item beside the copy of its content: everything that a copy on another
// disk, made by an ordinary user, does not tell.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "machine/capture/facts.h"
#include "machine/capture/recorded_parts.h"
#include "machine/files.h"

namespace machine::capture {

// How much of an item was asked.
enum class Known : std::uint8_t { kNothing, kKind, kStatus, kAll };
Known KnownBy(Detail detail);

struct RecordedListing {
  std::vector<std::string> names;
  bool is_whole = true;  // the folder was read to its end
};

struct RecordedItem {
  // With anything but `kNothing` the recording stands alone: the copy is not looked at.
  Known known = Known::kNothing;
  Item item;
  bool is_companion = false;
  std::optional<Absence> absence;  // why there is no such item
  std::optional<Fact<std::string>> target;
  std::optional<Fact<RecordedListing>> listing;
  // A value: the copy holds it.
  std::optional<Fact<Done>> content, resource_fork;
  // Of a content that nobody read as a whole.
  std::optional<Fact<RecordedParts>> parts;
  // The content is still to be copied, which the capture's owner wanted to have.
  bool is_to_take = false;
  std::optional<Fact<VolumeSpace>> space;
};

Record RecordOf(RecordedItem const& recorded);

// The keys that there are change what `copy` has. The first malformed one makes all malformed. Of
// `wanted` only the kind, nothing else but a link's target is read; listings never are.
Fact<RecordedItem> ItemIn(Field const& field, Known wanted, RecordedItem copy);
// Nothing where the folder was not listed.
std::optional<Fact<RecordedListing>> ListingIn(Field const& field);
// Whether nothing of it is taken from the copy.
bool StandsAlone(Field const& field);

}  // namespace machine::capture
