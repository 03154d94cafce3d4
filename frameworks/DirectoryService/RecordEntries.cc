// What is in a buffer of records.
#include <DirectoryService/DirServices.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "frameworks/DirectoryService/answer_buffer.h"
#include "frameworks/DirectoryService/references.h"

using namespace directory_service;

namespace {

// An entry that ends with a node, in which there is room for some bytes; zeroed, with a NUL behind
// them.
template <typename Entry>
Entry* AllocateEntry(tDataNode Entry::*node, std::size_t size) {
  auto* const entry = static_cast<Entry*>(std::calloc(1, sizeof(Entry) + size + 1));
  if (entry == nullptr) return nullptr;
  (entry->*node).fBufferSize = (entry->*node).fBufferLength = static_cast<UInt32>(size);
  return entry;
}

char* DataOf(tDataNode& node) {
  return reinterpret_cast<char*>(&node) + offsetof(tDataNode, fBufferData);
}

char* PutShortText(char* to, std::string_view text) {
  auto const length = static_cast<UInt16>(text.size());
  std::memcpy(to, &length, sizeof length);
  std::memcpy(to + sizeof length, text.data(), text.size());
  return to + sizeof length + text.size();
}

tDirStatus Free(void* entry) {
  if (entry == nullptr) return eDSNullParameter;
  std::free(entry);
  return eDSNoErr;
}

}  // namespace

tDirStatus dsGetRecordEntry(tDirNodeReference node, tDataBufferPtr buffer, UInt32 index,
                            tAttributeListRef* list, tRecordEntryPtr* result) {
  tDirStatus status = eDSNoErr;
  if (References::Shared().Find<OpenNode>(node, status) == nullptr) return status;
  if (buffer == nullptr) return eDSNullDataBuff;
  if (list == nullptr || result == nullptr) return eDSNullParameter;
  auto record = RecordIn(*buffer, index);
  if (!record.value) return record.status;
  std::string_view const name = record.value->name.substr(0, UINT16_MAX);
  std::string_view const type = record.value->type.substr(0, UINT16_MAX);
  auto* const entry = AllocateEntry(&tRecordEntry::fRecordNameAndType,
                                    name.size() + type.size() + 2 * sizeof(UInt16));
  if (entry == nullptr) return eDSAllocationFailed;
  PutShortText(PutShortText(DataOf(entry->fRecordNameAndType), name), type);
  entry->fRecordAttributeCount = record.value->attributes.count;
  *result = entry;
  *list = References::Shared().Add(OpenAttributeList{node, record.value->attributes});
  return eDSNoErr;
}

tDirStatus dsGetAttributeEntry(tDirNodeReference node, tDataBufferPtr buffer,
                               tAttributeListRef list_number, UInt32 index,
                               tAttributeValueListRef* values, tAttributeEntryPtr* result) {
  tDirStatus status = eDSNoErr;
  auto const list = References::Shared().Find<OpenAttributeList>(list_number, status);
  if (list == nullptr) return status;
  if (list->node != node) return eDSInvalidAttrListRef;
  if (buffer == nullptr) return eDSNullDataBuff;
  if (values == nullptr || result == nullptr) return eDSNullParameter;
  auto attribute = AttributeIn(*buffer, list->attributes, index);
  if (!attribute.value) return attribute.status;
  auto* const entry =
      AllocateEntry(&tAttributeEntry::fAttributeSignature, attribute.value->name.size());
  if (entry == nullptr) return eDSAllocationFailed;
  std::ranges::copy(attribute.value->name, DataOf(entry->fAttributeSignature));
  entry->fAttributeValueCount = static_cast<UInt32>(attribute.value->values.size());
  for (PlaceInBuffer const& value : attribute.value->values) {
    entry->fAttributeDataSize += value.length;
    entry->fAttributeValueMaxSize = std::max(entry->fAttributeValueMaxSize, value.length);
  }
  *result = entry;
  *values = References::Shared().Add(OpenValueList{node, std::move(attribute.value->values)});
  return eDSNoErr;
}

tDirStatus dsGetAttributeValue(tDirNodeReference node, tDataBufferPtr buffer, UInt32 index,
                               tAttributeValueListRef list_number,
                               tAttributeValueEntryPtr* result) {
  tDirStatus status = eDSNoErr;
  auto const list = References::Shared().Find<OpenValueList>(list_number, status);
  if (list == nullptr) return status;
  if (list->node != node) return eDSInvalidAttrValueRef;
  if (buffer == nullptr) return eDSNullDataBuff;
  if (result == nullptr) return eDSNullParameter;
  if (index == 0 || index > list->values.size()) return eDSIndexOutOfRange;
  auto const value = TextAt(*buffer, list->values[index - 1]);
  if (!value) return eDSCorruptBuffer;
  auto* const entry = AllocateEntry(&tAttributeValueEntry::fAttributeValueData, value->size());
  if (entry == nullptr) return eDSAllocationFailed;
  std::ranges::copy(*value, DataOf(entry->fAttributeValueData));
  entry->fAttributeValueID = index;
  *result = entry;
  return eDSNoErr;
}

tDirStatus dsCloseAttributeList(tAttributeListRef list) {
  return References::Shared().Close<OpenAttributeList>(list);
}

tDirStatus dsCloseAttributeValueList(tAttributeValueListRef list) {
  return References::Shared().Close<OpenValueList>(list);
}

tDirStatus dsDeallocRecordEntry(tDirReference, tRecordEntryPtr entry) { return Free(entry); }
tDirStatus dsDeallocAttributeEntry(tDirReference, tAttributeEntryPtr entry) { return Free(entry); }
tDirStatus dsDeallocAttributeValueEntry(tDirReference, tAttributeValueEntryPtr entry) {
  return Free(entry);
}
