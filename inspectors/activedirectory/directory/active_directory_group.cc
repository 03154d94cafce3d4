#include "inspectors/activedirectory/directory/active_directory_group.h"

#include "inspectors/activedirectory/directory/record_xml.h"

std::string ActiveDirectoryGroup::ToXml() const {
  std::string xml = "<Group>" + ActiveDirectoryBase::ToXml();
  AppendText(xml, "Sid", sid_);
  return xml + "</Group>";
}
