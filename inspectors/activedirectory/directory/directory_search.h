// A search in one node of the directory, with the buffer that its answer comes in. What is opened
// for it is closed with it.
#pragma once

#include <string>
#include <string_view>

#include "inspectors/activedirectory/directory/directory_calls.h"

// What to list: records of a name and a type, with an attribute.
struct RecordLists {
  AutoODDataList types, names, attributes;
};

// Before a question has been answered there are no records to look at.
class DirectorySearch {
 public:
  using NodeOpener = AutoODNodeRef (*)(tDirReference service);

  explicit DirectorySearch(NodeOpener open_node);

  // A name that the directory takes for all names is refused (`ODBuildListFromStringFailed`).
  RecordLists ListsForName(std::string const& name, std::string const& type,
                           char const* attribute) const;
  RecordLists ListsForAll(std::string const& type, char const* attribute) const;

  // At most `limit` records (0: any number), whatever letter case their names are in. Asked again
  // after an answer that has more, this goes on where it ended.
  tDirStatus ListRecords(RecordLists const& lists, UInt32 limit);
  // The same, never `eDSBufferTooSmall`.
  tDirStatus ListRecordsInGrowingBuffer(RecordLists const& lists, UInt32 limit);
  // The first record of the type that has the value in an attribute.
  tDirStatus FindByValue(std::string_view value, std::string_view value_attribute,
                         std::string const& type, char const* attribute);

  // Of the answer in the buffer.
  UInt32 count() const { return count_; }
  bool has_more() const { return context_ != nullptr; }
  // The first value of the first attribute of the first record.
  std::string FirstValue() const;
  template <class Visit>
  void ForEachAttribute(UInt32 record, Visit const& visit) const;
  // The bytes are valid during the visit.
  template <class Visit>
  void ForEachValue(AutoODAttrEntryAttrValueList const& attribute, Visit const& visit) const;

 private:
  void EnlargeBuffer();

  // The node is closed before its service.
  AutoODReference service_;
  AutoODNodeRef node_;
  UInt32 size_ = kDirectoryBufferSize;
  AutoODDataBuffer buffer_;
  UInt32 count_ = 0;
  tContextData context_ = nullptr;
};

template <class Visit>
void DirectorySearch::ForEachAttribute(UInt32 record, Visit const& visit) const {
  AutoODRecordEntryAttrList const found = ODGetRecordEntry(node_.Get(), buffer_, record);
  UInt32 const count = found.entry.Get()->fRecordAttributeCount;
  for (UInt32 index = 1; index <= count; ++index) {
    visit(ODGetAttributeEntry(node_.Get(), buffer_, found.attributes, index));
  }
}

template <class Visit>
void DirectorySearch::ForEachValue(AutoODAttrEntryAttrValueList const& attribute,
                                   Visit const& visit) const {
  UInt32 const count = attribute.entry.Get()->fAttributeValueCount;
  for (UInt32 index = 1; index <= count; ++index) {
    AutoODAttrValueEntry const value =
        ODGetAttributeValue(node_.Get(), buffer_, index, attribute.values);
    visit(ODGetAttributeValueData(value));
  }
}
