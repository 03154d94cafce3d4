// A capture without the names of people and machines and without the numbers of devices.
#pragma once

#include <string>
#include <string_view>

#include "machine/capture/pseudonyms.h"
#include "machine/capture/recording.h"

namespace machine::capture {

class Redaction {
 public:
  explicit Redaction(Pseudonyms names) : names_(std::move(names)) {}

  std::string Text(std::string_view text) { return names_.Replaced(text); }
  // All but `Files`. What says how the capture is to be read, or of which system it is, stays.
  RecordDictionary Document(RecordDictionary const& document);
  Record Plane(Record const& plane) { return Values(plane, 0); }
  RecordedItem Item(RecordedItem item);
  // Null when it is no text: nobody could tell what is in it.
  Content ContentOf(std::string const& path, Content const& content);

 private:
  Record Values(Record const& record, int depth);
  RecordDictionary Members(RecordDictionary const& members, bool has_free_keys, int depth);
  Record Answers(Record const& answers);
  void Redact(Absence& absence);

  Pseudonyms names_;
};

// A larger file is not redacted, and so it is left out.
inline constexpr std::size_t kLargestRedacted = std::size_t{16} << 20;

// Why a content is left out.
Absence NotRedacted(std::string const& path);

}  // namespace machine::capture
