#include "inspectors/activedirectory/directory/record_lookup.h"

#include "inspectors/activedirectory/directory/directory_search.h"

namespace {

void List(DirectorySearch& search, RecordLists const& lists, UInt32 limit) {
  if (search.ListRecordsInGrowingBuffer(lists, limit) != eDSNoErr) throw DSGetRecordListFailed();
}

std::string NameOf(tAttributeEntry const& attribute) {
  tDataNode const& name = attribute.fAttributeSignature;
  return {static_cast<char const*>(name.fBufferData), name.fBufferLength};
}

ODRecord RecordAt(DirectorySearch const& search, UInt32 index) {
  ODRecord record;
  search.ForEachAttribute(index, [&](AutoODAttrEntryAttrValueList const& attribute) {
    std::vector<std::string>& values = record[NameOf(*attribute.entry.Get())];
    search.ForEachValue(attribute,
                        [&values](ConstData value) { values.push_back(MakeString(value)); });
  });
  return record;
}

}  // namespace

std::vector<ODRecord> GetODObjectListOfType(std::string const& type) {
  DirectorySearch search(ODGetLocalHostedNode);
  RecordLists const lists = search.ListsForAll(type, kDSAttributesAll);
  std::vector<ODRecord> records;
  do {
    List(search, lists, 0);
    for (UInt32 index = 1; index <= search.count(); ++index) {
      records.push_back(RecordAt(search, index));
    }
  } while (search.has_more());
  return records;
}

ODRecord GetODObjectOfType(std::string const& type, std::string const& name) {
  DirectorySearch search(ODGetSearchDirNode);
  List(search, search.ListsForName(name, type, kDSAttributesAll), 1);
  if (search.count() == 0) throw DSGetRecordListFailed();
  return RecordAt(search, 1);
}

bool GetODRecordSingleValue(ODRecord const& record, std::string const& attribute,
                            std::string& value) {
  auto const found = record.find(attribute);
  if (found == record.end() || found->second.empty()) return false;
  value = found->second.front();
  return true;
}
