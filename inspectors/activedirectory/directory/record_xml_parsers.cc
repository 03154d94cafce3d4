#include "inspectors/activedirectory/directory/record_xml_parsers.h"

#include <optional>
#include <utility>

#include "portable/read_numeral.h"
#include "portable/time_text.h"

namespace {

// What is malformed may ask for the same long text again and again, each time for nothing. The
// largest cache file of real groups needs a quarter of this.
constexpr std::size_t kMostWork = 256 * 1024 * 1024;

}  // namespace

DirectoryRecordXmlParser::DirectoryRecordXmlParser(ActiveDirectoryAccount& record,
                                                   std::string_view record_element)
    : record_(record), record_element_(record_element), work_left_(kMostWork) {}

DirectoryRecordXmlParser::Field DirectoryRecordXmlParser::FieldNamed(std::string_view name) const {
  static constexpr std::pair<std::string_view, Field> kFields[] = {
      {"Version", Field::kVersion},
      {"Name", Field::kName},
      {"Sid", Field::kSid},
      {"DistinguishedName", Field::kDistinguishedName},
      {"ErrorMessage", Field::kErrorMessage},
      {"GroupsErrorMessage", Field::kGroupsErrorMessage},
      {"ErrorCount", Field::kErrorCount},
      {"SampleTime", Field::kSampleTime},
      {"CacheState", Field::kCacheState},
  };
  for (auto const& [field_name, field] : kFields) {
    if (field_name == name) return field;
  }
  return Field::kNone;
}

void DirectoryRecordXmlParser::StartElement(std::string const& name,
                                            std::vector<XMLAttribute*> const&) {
  field_ = Field::kNone;
  if (name == record_element_) return StartRecord();
  if (name == "Group") return StartGroup();
  if (name == "Groups") {
    section_ = Section::kGroups;
    groups_.clear();
    groups_size_ = 0;
    return;
  }
  field_ = FieldNamed(name);
  if (field_ == Field::kNone) section_ = Section::kNone;
}

void DirectoryRecordXmlParser::StartRecord() {
  section_ = Section::kRecord;
  for (std::size_t field = 0; field < texts_.size(); ++field) {
    bool const is_kept = field == static_cast<std::size_t>(Field::kVersion) ||
                         field == static_cast<std::size_t>(Field::kSid);
    if (!is_kept) texts_[field].clear();
  }
}

void DirectoryRecordXmlParser::StartGroup() {
  section_ = Section::kGroup;
  for (Field const field : kGroupFields) Text(field).clear();
}

void DirectoryRecordXmlParser::Characters(std::string const& text) {
  if (field_ != Field::kNone) Text(field_) += text;
}

void DirectoryRecordXmlParser::EndElement(std::string const& name) {
  field_ = Field::kNone;
  if (name == record_element_) {
    RequireVersion();
    section_ = Section::kNone;
    return;
  }
  if (name == "Group") return EndGroup();
  if (name == "Groups") return EndGroups();
  Field const field = FieldNamed(name);
  if (field == Field::kNone) section_ = Section::kNone;
  if (field == Field::kVersion) RequireVersion();
  if (section_ != Section::kRecord) return;
  SpendWork(Text(field).size());
  StoreField(field);
}

// The error count is written, but a group read back has not failed yet.
void DirectoryRecordXmlParser::EndGroup() {
  std::size_t size = sizeof(ActiveDirectoryGroup);
  for (Field const field : kGroupFields) size += Text(field).size();
  SpendWork(size);
  groups_size_ += size;
  ActiveDirectoryGroup& group = groups_.emplace_back(Text(Field::kName));
  group.SetDistinguishedName(Text(Field::kDistinguishedName));
  group.SetErrorMessage(Text(Field::kErrorMessage));
  group.SetSid(Text(Field::kSid));
  StoreSampleTime(group);
  section_ = Section::kRecord;
}

void DirectoryRecordXmlParser::EndGroups() {
  SpendWork(groups_size_);
  record_.SetGroups(groups_);
  section_ = Section::kRecord;
}

void DirectoryRecordXmlParser::StoreField(Field field) {
  switch (field) {
    case Field::kName:
      return record_.SetName(Text(field));
    case Field::kDistinguishedName:
      return record_.SetDistinguishedName(Text(field));
    case Field::kErrorMessage:
      return record_.SetErrorMessage(Text(field));
    case Field::kGroupsErrorMessage:
      return record_.SetGroupsErrorMessage(Text(field));
    case Field::kErrorCount:
      return record_.SetErrorCount(Number(field));
    case Field::kCacheState:
      return record_.SetCacheState(Number(field));
    case Field::kSampleTime:
      return StoreSampleTime(record_);
    case Field::kNone:
    case Field::kVersion:
    case Field::kSid:
    case Field::kDomain:
      return;
  }
}

// What is no time changes nothing.
void DirectoryRecordXmlParser::StoreSampleTime(ActiveDirectoryBase& record) {
  std::string const& text = Text(Field::kSampleTime);
  if (text.empty()) return record.SetLastSampleTime({});
  std::optional<Instant> const time = TextToTime(ConstData(text));
  if (time) record.SetLastSampleTime(*time);
}

// 0 for what is no numeral.
std::uint32_t DirectoryRecordXmlParser::Number(Field field) {
  std::uint32_t number = 0;
  TryReadAsciiDecimalNumeral(ConstData(Text(field)), number);
  return number;
}

void DirectoryRecordXmlParser::RequireVersion() {
  if (Text(Field::kVersion) != "1.0") ThrowVersionMismatch();
}

void DirectoryRecordXmlParser::SpendWork(std::size_t bytes) {
  if (bytes > work_left_) throw DirectoryRecordTooLarge();
  work_left_ -= bytes;
}

std::string const& ActiveDirectoryLocalComputerXmlParser::GetParserVersion() {
  static std::string const version = "1.0";
  return version;
}

void ActiveDirectoryLocalComputerXmlParser::ThrowVersionMismatch() const {
  throw ADLocalComputerXmlParserVersionMismatchException();
}

std::string const& ActiveDirectoryUserXmlParser::GetParserVersion() {
  static std::string const version = "1.0";
  return version;
}

DirectoryRecordXmlParser::Field ActiveDirectoryUserXmlParser::FieldNamed(
    std::string_view name) const {
  return name == "Domain" ? Field::kDomain : DirectoryRecordXmlParser::FieldNamed(name);
}

void ActiveDirectoryUserXmlParser::StoreField(Field field) {
  if (field != Field::kDomain) return DirectoryRecordXmlParser::StoreField(field);
  user_.SetDomain(Text(field));
}

void ActiveDirectoryUserXmlParser::ThrowVersionMismatch() const {
  throw ADUserXmlParserVersionMismatchException();
}
