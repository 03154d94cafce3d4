#include "inspectors/activedirectory/directory/record_lookup.h"

#include "inspectors/activedirectory/directory/directory_search.h"

namespace {

void List(DirectorySearch& search, RecordLists const& lists, UInt32 limit) {
  if (search.ListRecordsInGrowingBuffer(lists, limit) != eDSNoErr) throw DSGetRecordListFailed();
}

}  // namespace

ODRecordList GetODObjectListOfType(std::string const& type) {
  DirectorySearch search(ODGetLocalHostedNode);
  RecordLists const lists = search.ListsForAll(type, kDSAttributesAll);
  ODRecordList records;
  do {
    List(search, lists, 0);
    records.Add(search.TakeAnswer());
  } while (search.has_more());
  return records;
}

ODRecord GetODObjectOfType(std::string const& type, std::string const& name) {
  DirectorySearch search(ODGetSearchDirNode);
  List(search, search.ListsForName(name, type, kDSAttributesAll), 1);
  auto const answer = std::make_shared<AnsweredRecords const>(search.TakeAnswer());
  if (answer->count() == 0) throw DSGetRecordListFailed();
  return {answer, 1};
}

bool GetODRecordSingleValue(ODRecord const& record, std::string_view attribute,
                            std::string& value) {
  return record.FirstValue(attribute, value);
}
