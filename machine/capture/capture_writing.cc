#include "machine/capture/capture_writing.h"

#include <cerrno>
#include <optional>
#include <utility>

#include "machine/capture/copies.h"
#include "machine/capture/document.h"
#include "machine/capture/identities.h"
#include "machine/capture/redaction.h"
#include "machine/capture/values.h"
#include "machine/live/item.h"
#include "machine/system_files.h"

namespace machine::capture {
namespace {

using Planes = std::vector<std::pair<std::string, Record>>;

Pseudonyms NamesIn(RecordDictionary const& document, Planes const& planes,
                   RecordedItems const& items) {
  Identities identities(document);
  for (auto const& [name, plane] : planes) identities.LearnDevices(plane);
  for (auto const& [path, item] : items.items()) {
    if (!item.absence) identities.LearnPath(path);
  }
  if (Content const accounts = items.ContentOf(kUserListPath, Fork::kData)) {
    identities.LearnAccounts(*accounts);
  }
  Pseudonyms names;
  identities.AddTo(names);
  for (auto const& [path, item] : items.items()) names.Avoid(path);
  return names;
}

class CaptureWriting {
 public:
  CaptureWriting(Recording& recording, CaptureFolder const& target, RecordWriter writer)
      : recording_(recording),
        items_(recording.items),
        target_(target),
        writer_(writer),
        taker_(recording.asked->Files(), items_.limits().file_bytes, items_.room()) {}

  Fact<Done> Write(std::string const& folder, Redacting redacting) {
    recording_.facts.Keep(kVolumes, recording_.volumes.Whole());
    Planes const planes = recording_.registry->Planes();
    RecordDictionary document = Document();
    if (redacting == Redacting::kNames) redaction_.emplace(NamesIn(document, planes, items_));
    RecordDictionary files = LayDownItems();
    Fact<Done> const is_written = LayDownPlanes(planes);
    if (!is_written) return is_written;
    if (redaction_) document = redaction_->Document(document);
    document.Add("Files", std::move(files));
    recording_.taking.changed = taker_.changed();
    Fact<std::string> const bytes = writer_(document);
    if (!bytes) return bytes.absence();
    if (bytes->size() > kLargestDocument) {
      return Absence{Outcome::kMalformed, folder, "too much was asked for one capture", EFBIG};
    }
    return target_.Finish(*bytes);
  }

 private:
  RecordDictionary Document();
  Fact<Done> LayDownPlanes(Planes const& planes);
  RecordDictionary LayDownItems();
  void LayDown(std::string const& path, RecordedItem& item, CopiedContent& content);
  void ReadToRedact(std::string const& path, RecordedItem& item, Content& data);
  void RedactContents(std::string const& path, RecordedItem& item, CopiedContent& content);
  void Report(std::string const& path, RecordedItem const& item);

  Recording& recording_;
  RecordedItems const& items_;
  CaptureFolder const& target_;
  RecordWriter const writer_;
  ContentTaker taker_;
  std::optional<Redaction> redaction_;
  std::string lost_companion_;  // the last that was to be taken and could not be
};

RecordDictionary CaptureWriting::Document() {
  recording_.registry->AddTo(recording_.facts);
  RecordDictionary document = recording_.facts.Document(recording_.scsi);
  auto const* known_absent = document.Find("Absent");
  RecordDictionary absent =
      known_absent == nullptr ? RecordDictionary() : *known_absent->As<RecordDictionary>();
  recording_.directory.AddTo(document, absent);
  if (!absent.entries().empty()) document.Add("Absent", std::move(absent));
  return document;
}

Fact<Done> CaptureWriting::LayDownPlanes(Planes const& planes) {
  for (auto const& [name, plane] : planes) {
    Fact<std::string> const bytes = writer_(redaction_ ? redaction_->Plane(plane) : plane);
    if (!bytes) return bytes.absence();
    Fact<Done> const is_written = target_.LayDownPlane(name, *bytes);
    if (!is_written) return is_written;
  }
  return Done();
}

RecordDictionary CaptureWriting::LayDownItems() {
  std::vector<RecordDictionary::Entry> files;
  for (auto const& [path, recorded] : items_.items()) {
    RecordedItem item = recorded;
    CopiedContent content = {path, items_.ContentOf(path, Fork::kData),
                             items_.ContentOf(path, Fork::kResource)};
    if (item.is_to_take) content.taker = &taker_;
    LayDown(path, item, content);
    files.emplace_back(KeyOfBytes(content.path), RecordOf(item));
  }
  return RecordDictionary(std::move(files));
}

void CaptureWriting::LayDown(std::string const& path, RecordedItem& item, CopiedContent& content) {
  std::string const companion = live::CompanionPath(path);
  auto const known = items_.items().find(companion);
  bool const has_own_companion = items_.ContentOf(companion, Fork::kData) != nullptr ||
                                 (known != items_.items().end() && known->second.is_to_take);
  // An empty fork would pass for the one that was lost.
  bool const has_fork = item.resource_fork && *item.resource_fork;
  if (has_fork && !lost_companion_.empty() && lost_companion_ == companion) {
    item.resource_fork.emplace(Absence{Outcome::kAbsent, path, kNotRecorded});
  }
  if (redaction_) {
    RedactContents(path, item, content);
    Report(path, item);
    item = redaction_->Item(std::move(item));
    target_.LayDown(content, item, has_own_companion);
  } else {
    target_.LayDown(content, item, has_own_companion);
    Report(path, item);
  }
}

// Nothing is laid down by its own name from here on. Texts keep their sizes.
void CaptureWriting::RedactContents(std::string const& path, RecordedItem& item,
                                    CopiedContent& content) {
  content.path = redaction_->Text(path);
  if (item.is_to_take) ReadToRedact(path, item, content.data);
  content.taker = nullptr;
  bool const had_fork = content.resource_fork != nullptr;
  Content const data = std::exchange(content.data, redaction_->ContentOf(path, content.data));
  content.resource_fork = nullptr;
  if (had_fork) item.resource_fork.emplace(NotRedacted(path));
  if (data == nullptr || content.data != nullptr) return;
  item.content.emplace(NotRedacted(path));
  recording_.taking.not_redacted.push_back(path);
}

void CaptureWriting::ReadToRedact(std::string const& path, RecordedItem& item, Content& data) {
  std::string text;
  TextSink sink(text, kLargestRedacted);
  Fact<Done> const taken = taker_.Take(path, sink, item);
  if (taken) data = std::make_shared<std::string const>(std::move(text));
  if (!taken) item.content.emplace(taken.absence());
}

void CaptureWriting::Report(std::string const& path, RecordedItem const& item) {
  if (!item.is_to_take || !item.content || *item.content) return;
  lost_companion_ = path;
  TakingReport& report = recording_.taking;
  Absence absence = item.content->absence();
  absence.source = path;
  if (absence.error == EFBIG) {
    report.too_large.push_back(path);
  } else if (absence.where != NotRedacted(path).where) {
    report.refused.push_back(std::move(absence));
  }
}

}  // namespace

Fact<Done> WriteCapture(Recording& recording, std::string const& folder, RecordWriter writer,
                        Redacting redacting) {
  Fact<CaptureFolder> const made = CaptureFolder::Make(folder);
  if (!made) return made.absence();
  return CaptureWriting(recording, *made, writer).Write(folder, redacting);
}

}  // namespace machine::capture
