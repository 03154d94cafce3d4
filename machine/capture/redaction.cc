#include "machine/capture/redaction.h"

#include <algorithm>
#include <iterator>

#include "machine/capture/directory.h"
#include "machine/capture/identities.h"
#include "machine/system_files.h"

namespace machine::capture {
namespace {

constexpr int kDeepest = 512;  // of property lists

// Sorted. None of these tells of anybody, and a machine may well be called "debian".
constexpr std::string_view kUntouched[] = {
    "Architecture",      "BootTime",      "Components",   "FormatVersion", "Gestalt",
    "Hardware",          "KernelRelease", "Memory",       "Partial",       "Platform",
    "ProcessCount",      "Processors",    "SystemRoot",   "SystemVersion", "Taken",
    "TakenMicroseconds", "TimeZone",      "TimeZoneRules"};
// Their keys are names themselves.
constexpr std::string_view kNamedByKeys[] = {"Absent", "Environment", "Users"};
// Values that a reader goes by.
constexpr std::string_view kFixed[] = {"Reason", "IOObjectClass", kRecordType, kRecordNode};

template <typename Set>
bool IsIn(Set const& set, std::string_view key) {
  return std::ranges::find(set, key) != std::end(set);
}

bool TellsTheSystem(std::string_view path) {
  return path == kSystemVersionPath || path == "/etc/os-release" || path == "/usr/lib/os-release" ||
         path == kLocalTimePath || path.starts_with(kZoneFolder);
}

bool IsText(std::string_view content) { return content.find('\0') == std::string_view::npos; }

}  // namespace

Absence NotRedacted(std::string const& path) {
  return {Outcome::kAbsent, path,
          std::string(kNotRecorded) + ": no text, so names in it could not be replaced"};
}

Record Redaction::Values(Record const& record, int depth) {
  if (depth > kDeepest) return RecordDictionary();
  if (auto const* text = record.As<std::string>()) return Text(*text);
  if (auto const* bytes = record.As<RecordBytes>()) return RecordBytes{Text(bytes->content)};
  if (auto const* members = record.As<RecordDictionary>()) return Members(*members, false, depth);
  auto const* items = record.As<RecordArray>();
  if (items == nullptr) return record;
  RecordArray redacted;
  for (Record const& item : *items) redacted.push_back(Values(item, depth + 1));
  return redacted;
}

// Inquiry data have no room between what is standard and what the vendor filled in.
RecordDictionary Redaction::Members(RecordDictionary const& members, bool has_free_keys,
                                    int depth) {
  std::vector<RecordDictionary::Entry> redacted;
  for (auto const& [key, value] : members.entries()) {
    auto const* bytes = value.As<RecordBytes>();
    Record changed = value;
    if (key == kInquiry && bytes != nullptr && bytes->content.size() > kVendorBytesStart) {
      std::string_view const all = bytes->content;
      std::string text(all.substr(0, kVendorBytesStart));
      text += Text(all.substr(kVendorBytesStart, kVendorBytesSize));
      text += all.substr(std::min(all.size(), kVendorBytesStart + kVendorBytesSize));
      changed = RecordBytes{text};
    } else if (!IsIn(kFixed, key)) {
      changed = Values(value, depth + 1);
    }
    redacted.emplace_back(has_free_keys ? Text(key) : key, std::move(changed));
  }
  return RecordDictionary(std::move(redacted));
}

Record Redaction::Answers(Record const& answers) {
  auto const* members = answers.As<RecordDictionary>();
  if (members == nullptr) return answers;
  std::vector<RecordDictionary::Entry> redacted;
  for (auto const& [key, numbers] : members->entries()) {
    auto const change = [this](std::string_view name) {
      return name.starts_with("ds") ? std::string(name) : Text(name);
    };
    redacted.emplace_back(WithNamesChanged(key, change), numbers);
  }
  return RecordDictionary(std::move(redacted));
}

RecordDictionary Redaction::Document(RecordDictionary const& document) {
  RecordDictionary redacted;
  for (auto const& [key, value] : document.entries()) {
    auto const* members = value.As<RecordDictionary>();
    if (IsIn(kUntouched, key)) {
      redacted.Add(key, value);
    } else if (key == kDirectoryAnswers) {
      redacted.Add(key, Answers(value));
    } else if (members != nullptr && IsIn(kNamedByKeys, key)) {
      redacted.Add(key, Members(*members, true, 0));
    } else {
      redacted.Add(key, Values(value, 0));
    }
  }
  return redacted;
}

void Redaction::Redact(Absence& absence) {
  absence.source = Text(absence.source);
  absence.where = Text(absence.where);
}

RecordedItem Redaction::Item(RecordedItem item) {
  auto const redact = [this](auto& fact) {
    if (!fact || *fact) return;
    Absence absence = fact->absence();
    Redact(absence);
    fact.emplace(std::move(absence));
  };
  if (item.absence) Redact(*item.absence);
  redact(item.target);
  redact(item.listing);
  redact(item.content);
  redact(item.resource_fork);
  // A name may be cut off where a part ends.
  item.parts.reset();
  redact(item.space);
  if (item.target && *item.target) item.target.emplace(Text(**item.target));
  if (item.listing && *item.listing) {
    for (std::string& name : item.listing->value().names) name = Text(name);
  }
  return item;
}

Content Redaction::ContentOf(std::string const& path, Content const& content) {
  if (content == nullptr || TellsTheSystem(path)) return content;
  if (!IsText(*content)) return nullptr;
  return std::make_shared<std::string const>(Text(*content));
}

}  // namespace machine::capture
