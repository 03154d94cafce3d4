// The records that one call of the directory answered with, in the buffer that they came in.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "inspectors/activedirectory/directory/directory_calls.h"

// The node is closed before its service.
struct OpenedNode {
  AutoODReference service;
  AutoODNodeRef node;
};

// The attribute's name, in its entry.
std::string_view NameOf(tAttributeEntry const& attribute);

// Records and what is in them are counted from 1, each read by the calls of the directory, whose
// exceptions pass. Any number of threads may read at once.
class GATOTU_API AnsweredRecords {
 public:
  AnsweredRecords(std::shared_ptr<OpenedNode const> node, AutoODDataBuffer buffer, UInt32 count)
      : node_(std::move(node)), buffer_(std::move(buffer)), count_(count) {}

  UInt32 count() const { return count_; }

  template <class Visit>
  void ForEachAttribute(UInt32 record, Visit const& visit) const;
  // The bytes are valid during the visit.
  template <class Visit>
  void ForEachValue(AutoODAttrEntryAttrValueList const& attribute, Visit const& visit) const;

  // There has to be one.
  std::string FirstValue(AutoODAttrEntryAttrValueList const& attribute) const;
  // Of the attribute of exactly that name. False when there is none, or one without values.
  bool FirstValue(UInt32 record, std::string_view attribute, std::string& value) const;
  // Of the first attribute of the first record.
  std::string FirstValue() const;

 private:
  AutoODAttrEntryAttrValueList AttributeAt(AutoODRecordEntryAttrList const& record,
                                           UInt32 index) const {
    return ODGetAttributeEntry(node_->node.Get(), buffer_, record.attributes, index);
  }

  std::shared_ptr<OpenedNode const> node_;
  AutoODDataBuffer buffer_;
  UInt32 count_;
};

template <class Visit>
void AnsweredRecords::ForEachAttribute(UInt32 record, Visit const& visit) const {
  AutoODRecordEntryAttrList const found = ODGetRecordEntry(node_->node.Get(), buffer_, record);
  UInt32 const count = found.entry.Get()->fRecordAttributeCount;
  for (UInt32 index = 1; index <= count; ++index) visit(AttributeAt(found, index));
}

template <class Visit>
void AnsweredRecords::ForEachValue(AutoODAttrEntryAttrValueList const& attribute,
                                   Visit const& visit) const {
  UInt32 const count = attribute.entry.Get()->fAttributeValueCount;
  for (UInt32 index = 1; index <= count; ++index) {
    AutoODAttrValueEntry const value =
        ODGetAttributeValue(node_->node.Get(), buffer_, index, attribute.values);
    visit(ODGetAttributeValueData(value));
  }
}
