#include "inspectors/activedirectory/directory/active_directory_local_computer.h"

#include "inspectors/activedirectory/directory/active_directory_inspector_context.h"
#include "inspectors/activedirectory/directory/record_xml_parsers.h"
#include "portable/ascii.h"

ActiveDirectoryLocalComputer::ActiveDirectoryLocalComputer(FileLocation const& location) {
  LoadFromCache(location);
}

std::string ActiveDirectoryLocalComputer::ToXml() const {
  return AccountXml("Computer", ActiveDirectoryLocalComputerXmlParser::GetParserVersion(), {});
}

void ActiveDirectoryLocalComputer::FromXml(std::string const& text) {
  try {
    ActiveDirectoryLocalComputerXmlParser(*this).Parse(text);
  } catch (ADLocalComputerXmlParserVersionMismatchException const&) {
    ClearData();
  }
}

bool ActiveDirectoryLocalComputer::GetGroup(std::string const& name,
                                            ActiveDirectoryGroup& out) const {
  auto const is_named_so = [&name](ActiveDirectoryGroup const& group) {
    return Ascii::EqualIgnoringCase(ConstData(group.GetName()), ConstData(name));
  };
  return CopyFirstGroup(is_named_so, out);
}

bool ActiveDirectoryLocalComputer::FindCache(ActiveDirectoryInspectorContext const& context,
                                             FileLocation& out) const {
  return context.FindComputerCache(out);
}
