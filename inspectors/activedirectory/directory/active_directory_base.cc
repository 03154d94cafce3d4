#include "inspectors/activedirectory/directory/active_directory_base.h"

#include <optional>

#include "inspectors/activedirectory/directory/record_xml.h"
#include "portable/clock.h"
#include "portable/time_text.h"

namespace {

// In local time; where the machine does not tell its zone, in universal time.
void AppendTime(std::string& xml, char const* element, Instant time) {
  if (time.microseconds == 0) return;
  std::optional<TimeText> const text = TimeToText(time, ZoneOffsetAt(time).value_or(0));
  if (text) AppendText(xml, element, text->Text());
}

}  // namespace

void ActiveDirectoryBase::ClearData() {
  name_.clear();
  distinguished_name_.clear();
  error_message_.clear();
  sample_time_ = {};
  error_count_ = 0;
  cache_state_ = kNeverFilled;
}

std::string ActiveDirectoryBase::ToXml() const {
  std::string xml;
  AppendText(xml, "Name", name_);
  AppendText(xml, "DistinguishedName", distinguished_name_);
  AppendText(xml, "ErrorMessage", error_message_);
  if (error_count_ != 0) AppendNumber(xml, "ErrorCount", error_count_);
  AppendTime(xml, "SampleTime", sample_time_);
  return xml;
}
