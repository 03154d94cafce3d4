#include "inspectors/activedirectory/directory/active_directory_local_user.h"

#include "inspectors/activedirectory/directory/active_directory_inspector_context.h"
#include "inspectors/activedirectory/directory/record_xml_parsers.h"

ActiveDirectoryLocalUser::ActiveDirectoryLocalUser(std::string name)
    : ActiveDirectoryAccount(std::move(name)) {}

ActiveDirectoryLocalUser::ActiveDirectoryLocalUser(std::string name, std::string domain)
    : ActiveDirectoryAccount(std::move(name)), domain_(std::move(domain)) {}

ActiveDirectoryLocalUser::ActiveDirectoryLocalUser(FileLocation const& location) {
  LoadFromCache(location);
}

void ActiveDirectoryLocalUser::ClearData() {
  ActiveDirectoryAccount::ClearData();
  domain_.clear();
  status_ = Status::kNeverRefreshed;
}

std::string ActiveDirectoryLocalUser::ToXml() const {
  return AccountXml("User", ActiveDirectoryUserXmlParser::GetParserVersion(), domain_);
}

void ActiveDirectoryLocalUser::FromXml(std::string const& text) {
  try {
    ActiveDirectoryUserXmlParser(*this).Parse(text);
  } catch (ADUserXmlParserVersionMismatchException const&) {
    ClearData();
  }
}

bool ActiveDirectoryLocalUser::GetGroup(std::string const& name, ActiveDirectoryGroup& out) const {
  return CopyFirstGroup(
      [&name](ActiveDirectoryGroup const& group) { return group.GetName() == name; }, out);
}

bool ActiveDirectoryLocalUser::FindCache(ActiveDirectoryInspectorContext const& context,
                                         FileLocation& out) const {
  return context.FindUserCache(GetName(), out);
}
