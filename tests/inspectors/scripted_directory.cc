#include "tests/inspectors/scripted_directory.h"

namespace {

ScriptedDirectory* current = nullptr;

ScriptedDirectory& InUse(std::string const& type) {
  if (current == nullptr || current->fails || type != kUsersRecordType) throw DirectoryFailed();
  return *current;
}

}  // namespace

ScriptedDirectory::ScriptedDirectory() { current = this; }
ScriptedDirectory::~ScriptedDirectory() { current = nullptr; }

void ScriptedDirectory::AddUser(std::string const& name, std::string const& id) {
  users[name] = {{"dsAttrTypeStandard:RecordName", {name, "alias of " + name}},
                 {"dsAttrTypeStandard:UniqueID", {id}}};
}

std::vector<ODRecord> GetODObjectListOfType(std::string const& type) {
  std::vector<ODRecord> records;
  for (auto const& [name, record] : InUse(type).users) records.push_back(record);
  return records;
}

ODRecord GetODObjectOfType(std::string const& type, std::string const& name) {
  auto const& users = InUse(type).users;
  auto const found = users.find(name);
  if (found == users.end()) throw DirectoryFailed();
  return found->second;
}

bool GetODRecordSingleValue(ODRecord const& record, std::string const& attribute,
                            std::string& value) {
  auto const found = record.find(attribute);
  if (found == record.end() || found->second.empty()) return false;
  value = found->second.front();
  return true;
}
