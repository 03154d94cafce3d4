#include "tests/host/refreshed_machine.h"

namespace gatotu::tests {

using machine::DirectoryRecord;

RefreshedMachine::Records RefreshedMachine::LocalRecords() const {
  Records records;
  for (auto const& [name, number] : local_users) {
    DirectoryRecord record = {std::string(machine::kUserRecords), name, machine::kLocalNode, {}};
    record.Add("dsAttrTypeStandard:UniqueID", number);
    records.Add(record);
  }
  return records;
}

machine::Fact<RefreshedMachine::Records> RefreshedMachine::Find(
    machine::DirectoryQuery const& query) const {
  if (query.node == machine::DirectoryNode::kLocal) return LocalRecords();
  ++questions;
  on_question();
  unsigned const random = random_.fetch_add(1) * 2654435761u >> 16;
  if (random % 100 < failures) return machine::Absence{machine::Outcome::kTimedOut, "script", {}};
  Records records;
  for (std::string const& name : query.values) {
    DirectoryRecord record = {query.type, name, "/LDAPv3/script", {}};
    bool const wants_groups = query.requested.front() == "dsAttrTypeNative:tokenGroups";
    record.Add(query.requested.front(), wants_groups ? std::string("\1\1\0\0\0\0\0\5\7\0\0\0", 12)
                                                     : DistinguishedName(name));
    records.Add(record);
  }
  return records;
}

machine::Fact<machine::RecordDictionary> RefreshedMachine::ConsoleUser() const {
  machine::RecordArray array;
  for (std::string const& name : sessions) {
    machine::RecordDictionary session;
    session.Add("kCGSSessionUserNameKey", name);
    array.emplace_back(std::move(session));
  }
  machine::RecordDictionary console;
  console.Add("SessionInfo", std::move(array));
  return console;
}

}  // namespace gatotu::tests
