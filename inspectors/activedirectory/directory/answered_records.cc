#include "inspectors/activedirectory/directory/answered_records.h"

std::string_view NameOf(tAttributeEntry const& attribute) {
  tDataNode const& name = attribute.fAttributeSignature;
  return {name.fBufferData, name.fBufferLength};
}

std::string AnsweredRecords::FirstValue(AutoODAttrEntryAttrValueList const& attribute) const {
  AutoODAttrValueEntry const value =
      ODGetAttributeValue(node_->node.Get(), buffer_, 1, attribute.values);
  return MakeString(ODGetAttributeValueData(value));
}

bool AnsweredRecords::FirstValue(UInt32 record, std::string_view attribute,
                                 std::string& value) const {
  AutoODRecordEntryAttrList const found = ODGetRecordEntry(node_->node.Get(), buffer_, record);
  UInt32 const count = found.entry.Get()->fRecordAttributeCount;
  for (UInt32 index = 1; index <= count; ++index) {
    AutoODAttrEntryAttrValueList const candidate = AttributeAt(found, index);
    if (NameOf(*candidate.entry.Get()) != attribute) continue;
    if (candidate.entry.Get()->fAttributeValueCount == 0) return false;
    value = FirstValue(candidate);
    return true;
  }
  return false;
}

std::string AnsweredRecords::FirstValue() const {
  AutoODRecordEntryAttrList const record = ODGetRecordEntry(node_->node.Get(), buffer_, 1);
  return FirstValue(AttributeAt(record, 1));
}
