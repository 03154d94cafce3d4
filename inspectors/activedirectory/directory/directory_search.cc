#include "inspectors/activedirectory/directory/directory_search.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <utility>

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

DirectorySearch::DirectorySearch(NodeOpener open_node) {
  OpenedNode opened;
  opened.service = ODOpenService();
  opened.node = open_node(opened.service.Get());
  node_ = std::make_shared<OpenedNode const>(std::move(opened));
}

tDataBufferPtr DirectorySearch::Buffer() {
  if (buffer_.Get().data == nullptr) buffer_ = ODBufferAllocate(Service(), size_);
  return buffer_.Get().data;
}

AnsweredRecords DirectorySearch::TakeAnswer() {
  return {node_, std::move(buffer_), std::exchange(count_, 0)};
}

RecordLists DirectorySearch::ListsForName(std::string const& name, std::string const& type,
                                          char const* attribute) const {
  if (name == kDSRecordsAll) throw ODBuildListFromStringFailed();
  return {ODBuildListFromString(Service(), type), ODBuildListFromString(Service(), name),
          ODBuildListFromString(Service(), attribute)};
}

RecordLists DirectorySearch::ListsForAll(std::string const& type, char const* attribute) const {
  return {ODBuildListFromString(Service(), type), ODBuildListFromString(Service(), kDSRecordsAll),
          ODBuildListFromString(Service(), attribute)};
}

tDirStatus DirectorySearch::ListRecords(RecordLists const& lists, UInt32 limit) {
  count_ = limit;
  return dsGetRecordList(Node(), Buffer(), lists.names.Get(), eDSiExact, lists.types.Get(),
                         lists.attributes.Get(), false, &count_, &context_);
}

tDirStatus DirectorySearch::ListRecordsInGrowingBuffer(RecordLists const& lists, UInt32 limit) {
  for (;;) {
    tDirStatus const status = ListRecords(lists, limit);
    if (status != eDSBufferTooSmall) return status;
    if (size_ > std::numeric_limits<UInt32>::max() - kDirectoryBufferSize) {
      throw ODDataBufferAllocFailed();
    }
    size_ += kDirectoryBufferSize;
    buffer_.Dispose();
  }
}

tDirStatus DirectorySearch::FindByValue(std::string_view value, std::string_view value_attribute,
                                        std::string const& type, char const* attribute) {
  AutoODDataList const types = ODBuildListFromString(Service(), type);
  AutoODDataList const attributes = ODBuildListFromString(Service(), attribute);
  AutoODDataBuffer const searched = MakeNode(Service(), value_attribute);
  AutoODDataBuffer const pattern = MakeNode(Service(), value);
  count_ = 1;
  return dsDoAttributeValueSearchWithData(Node(), Buffer(), types.Get(), searched.Get().data,
                                          eDSiExact, pattern.Get().data, attributes.Get(), false,
                                          &count_, &context_);
}
