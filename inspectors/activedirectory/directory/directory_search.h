// A search in one node of the directory. What is opened for it is closed with it and with the last
// of its answers.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "inspectors/activedirectory/directory/answered_records.h"

// What to list: records of a name and a type, with an attribute.
struct RecordLists {
  AutoODDataList types, names, attributes;
};

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

  // What the call before was answered with, once.
  AnsweredRecords TakeAnswer();
  bool has_more() const { return context_ != nullptr; }

 private:
  tDirReference Service() const { return node_->service.Get(); }
  tDirNodeReference Node() const { return node_->node.Get(); }
  // That the next answer comes in.
  tDataBufferPtr Buffer();

  std::shared_ptr<OpenedNode const> node_;
  UInt32 size_ = kDirectoryBufferSize;
  AutoODDataBuffer buffer_;
  UInt32 count_ = 0;
  tContextData context_ = nullptr;
};
