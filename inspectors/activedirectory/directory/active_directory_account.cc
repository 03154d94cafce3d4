#include "inspectors/activedirectory/directory/active_directory_account.h"

#include "inspectors/activedirectory/directory/active_directory_inspector_context.h"
#include "inspectors/activedirectory/directory/record_xml.h"
#include "portable/file_content.h"
#include "portable/file_reader.h"

namespace {

// As long as it is when it is opened: whoever changes a record replaces its file.
std::string ReadRecordFile(FileLocation const& location) {
  FileReadingPath path(location);
  long long const length = path.Length();
  if (length > kLargestRecordFile) throw DirectoryRecordTooLarge();
  std::string text(static_cast<std::size_t>(length), '\0');
  FileReader reader;
  reader.Start(path, 0);
  Data const room(reinterpret_cast<unsigned char*>(text.data()), text.size());
  text.resize(text.size() - reader.ReadUpTo(room).Length());
  return text;
}

}  // namespace

void ActiveDirectoryAccount::ClearData() {
  ActiveDirectoryBase::ClearData();
  groups_.clear();
  groups_error_message_.clear();
}

std::string ActiveDirectoryAccount::AccountXml(std::string_view element, std::string_view version,
                                               std::string_view domain) const {
  std::string content;
  AppendElement(content, "Version", version);
  AppendNumber(content, "CacheState", GetCacheState());
  content += ActiveDirectoryBase::ToXml();
  AppendText(content, "GroupsErrorMessage", groups_error_message_);
  AppendText(content, "Domain", domain);
  std::string groups;
  for (ActiveDirectoryGroup const& group : groups_) groups += group.ToXml();
  AppendText(content, "Groups", groups);
  std::string xml;
  AppendElement(xml, element, content);
  return xml;
}

bool ActiveDirectoryAccount::SaveToCache(ActiveDirectoryInspectorContext const* context) const {
  FileLocation location;
  if (context == nullptr || !FindCache(*context, location)) return false;
  WriteConstDataToFile(ConstData(ToXml()), location);
  return true;
}

bool ActiveDirectoryAccount::LoadFromCache(ActiveDirectoryInspectorContext const* context) {
  FileLocation location;
  if (context == nullptr || !FindCache(*context, location) || !location.Exists()) return false;
  return LoadFromCache(location);
}

bool ActiveDirectoryAccount::LoadFromCache(FileLocation const& location) {
  FromXml(ReadRecordFile(location));
  return true;
}
