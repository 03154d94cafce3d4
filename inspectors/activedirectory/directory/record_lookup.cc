#include "inspectors/activedirectory/directory/record_lookup.h"

#include "inspectors/activedirectory/directory/directory_search.h"

namespace {

void List(DirectorySearch& search, RecordLists const& lists, UInt32 limit) {
  if (search.ListRecordsInGrowingBuffer(lists, limit) != eDSNoErr) throw DSGetRecordListFailed();
}

std::string_view NameOf(tAttributeEntry const& attribute) {
  tDataNode const& name = attribute.fAttributeSignature;
  return {name.fBufferData, name.fBufferLength};
}

std::string_view TextOf(ConstData bytes) {
  return {reinterpret_cast<char const*>(bytes.begin), bytes.Length()};
}

// Over what the record held before.
void ReadRecord(DirectorySearch const& search, UInt32 index, ODRecord& record) {
  record.Clear();
  search.ForEachAttribute(index, [&](AutoODAttrEntryAttrValueList const& attribute) {
    record.AddAttribute(NameOf(*attribute.entry.Get()));
    search.ForEachValue(attribute, [&record](ConstData value) { record.AddValue(TextOf(value)); });
  });
  record.SortAttributes();
}

}  // namespace

std::vector<ODRecord> GetODObjectListOfType(std::string const& type) {
  DirectorySearch search(ODGetLocalHostedNode);
  RecordLists const lists = search.ListsForAll(type, kDSAttributesAll);
  std::vector<ODRecord> records;
  ODRecord record;
  do {
    List(search, lists, 0);
    for (UInt32 index = 1; index <= search.count(); ++index) {
      ReadRecord(search, index, record);
      records.push_back(record);
    }
  } while (search.has_more());
  return records;
}

ODRecord GetODObjectOfType(std::string const& type, std::string const& name) {
  DirectorySearch search(ODGetSearchDirNode);
  List(search, search.ListsForName(name, type, kDSAttributesAll), 1);
  if (search.count() == 0) throw DSGetRecordListFailed();
  ODRecord record;
  ReadRecord(search, 1, record);
  return record;
}

bool GetODRecordSingleValue(ODRecord const& record, std::string_view attribute,
                            std::string_view& value) {
  std::size_t const found = record.Find(attribute);
  return found != record.attribute_count() && record.FirstValueAt(found, value);
}
