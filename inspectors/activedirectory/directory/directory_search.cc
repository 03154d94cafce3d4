#include "inspectors/activedirectory/directory/directory_search.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>

namespace {

// Of a node with the name of an attribute or a value; only texts longer than any that directories
// are known to have need more.
constexpr std::size_t kNodeCapacity = 264;

AutoODDataBuffer MakeNode(tDirReference service, std::string_view text) {
  auto const capacity = static_cast<UInt32>(std::max(kNodeCapacity, text.size()));
  AutoODDataBuffer node = ODBufferAllocate(service, capacity);
  tDataNodePtr const data = node.Get().data;
  std::memcpy(reinterpret_cast<char*>(data) + offsetof(tDataNode, fBufferData), text.data(),
              text.size());
  data->fBufferLength = static_cast<UInt32>(text.size());
  return node;
}

}  // namespace

DirectorySearch::DirectorySearch(NodeOpener open_node)
    : service_(ODOpenService()),
      node_(open_node(service_.Get())),
      buffer_(ODBufferAllocate(service_.Get(), size_)) {}

RecordLists DirectorySearch::ListsForName(std::string const& name, std::string const& type,
                                          char const* attribute) const {
  if (name == kDSRecordsAll) throw ODBuildListFromStringFailed();
  return {ODBuildListFromString(service_.Get(), type), ODBuildListFromString(service_.Get(), name),
          ODBuildListFromString(service_.Get(), attribute)};
}

RecordLists DirectorySearch::ListsForAll(std::string const& type, char const* attribute) const {
  return {ODBuildListFromString(service_.Get(), type),
          ODBuildListFromString(service_.Get(), kDSRecordsAll),
          ODBuildListFromString(service_.Get(), attribute)};
}

tDirStatus DirectorySearch::ListRecords(RecordLists const& lists, UInt32 limit) {
  count_ = limit;
  return dsGetRecordList(node_.Get(), buffer_.Get().data, lists.names.Get(), eDSiExact,
                         lists.types.Get(), lists.attributes.Get(), false, &count_, &context_);
}

tDirStatus DirectorySearch::ListRecordsInGrowingBuffer(RecordLists const& lists, UInt32 limit) {
  for (;;) {
    tDirStatus const status = ListRecords(lists, limit);
    if (status != eDSBufferTooSmall) return status;
    EnlargeBuffer();
  }
}

tDirStatus DirectorySearch::FindByValue(std::string_view value, std::string_view value_attribute,
                                        std::string const& type, char const* attribute) {
  AutoODDataList const types = ODBuildListFromString(service_.Get(), type);
  AutoODDataList const attributes = ODBuildListFromString(service_.Get(), attribute);
  AutoODDataBuffer const searched = MakeNode(service_.Get(), value_attribute);
  AutoODDataBuffer const pattern = MakeNode(service_.Get(), value);
  count_ = 1;
  return dsDoAttributeValueSearchWithData(node_.Get(), buffer_.Get().data, types.Get(),
                                          searched.Get().data, eDSiExact, pattern.Get().data,
                                          attributes.Get(), false, &count_, &context_);
}

std::string DirectorySearch::FirstValue() const {
  AutoODRecordEntryAttrList const record = ODGetRecordEntry(node_.Get(), buffer_, 1);
  AutoODAttrEntryAttrValueList const attribute =
      ODGetAttributeEntry(node_.Get(), buffer_, record.attributes, 1);
  AutoODAttrValueEntry const value = ODGetAttributeValue(node_.Get(), buffer_, 1, attribute.values);
  return MakeString(ODGetAttributeValueData(value));
}

void DirectorySearch::EnlargeBuffer() {
  if (size_ > std::numeric_limits<UInt32>::max() - kDirectoryBufferSize) {
    throw ODDataBufferAllocFailed();
  }
  size_ += kDirectoryBufferSize;
  buffer_.Dispose();
  buffer_ = ODBufferAllocate(service_.Get(), size_);
}
