// What is in a buffer of records.
#include <DirectoryService/DirServices.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "frameworks/DirectoryService/answer_buffer.h"
#include "frameworks/DirectoryService/references.h"

using namespace directory_service;

namespace {

char* DataOf(tDataNode& node) {
  return reinterpret_cast<char*>(&node) + offsetof(tDataNode, fBufferData);
}

struct Freed {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename Entry>
using OwnedEntry = std::unique_ptr<Entry, Freed>;

// An entry that ends with a node, in which there is room for some bytes and a NUL behind them.
template <typename Entry>
OwnedEntry<Entry> AllocateEntry(tDataNode Entry::*node, std::size_t size) {
  void* const memory = std::malloc(sizeof(Entry) + size + 1);
  if (memory == nullptr) return nullptr;
  OwnedEntry<Entry> entry(new (memory) Entry());
  ((*entry).*node).fBufferSize = ((*entry).*node).fBufferLength = static_cast<UInt32>(size);
  DataOf((*entry).*node)[size] = '\0';
  return entry;
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
  if (buffer == nullptr) return eDSNullDataBuff;
  if (list == nullptr || result == nullptr) return eDSNullParameter;
  auto const record = RecordIn(*buffer, index);
  if (!record.value) return record.status;
  std::string_view const name = record.value->name.substr(0, UINT16_MAX);
  std::string_view const type = record.value->type.substr(0, UINT16_MAX);
  auto entry = AllocateEntry(&tRecordEntry::fRecordNameAndType,
                             name.size() + type.size() + 2 * sizeof(UInt16));
  if (entry == nullptr) return eDSAllocationFailed;
  PutShortText(PutShortText(DataOf(entry->fRecordNameAndType), name), type);
  entry->fRecordAttributeCount = record.value->attributes.count;
  tDirStatus status = eDSNoErr;
  UInt32 const opened =
      References::Shared().Add(OpenAttributeList{node, record.value->attributes}, status);
  if (status != eDSNoErr) return status;
  *result = entry.release();
  *list = opened;
  return eDSNoErr;
}

tDirStatus dsGetAttributeEntry(tDirNodeReference node, tDataBufferPtr buffer,
                               tAttributeListRef list_number, UInt32 index,
                               tAttributeValueListRef* values, tAttributeEntryPtr* result) {
  tDirStatus status = eDSNoErr;
  auto list = References::Shared().Find<OpenAttributeList>(list_number, status);
  if (!list) return status;
  if (list->node != node) return eDSInvalidAttrListRef;
  if (buffer == nullptr) return eDSNullDataBuff;
  if (values == nullptr || result == nullptr) return eDSNullParameter;
  UInt32 const known = list->attributes.known.index;
  auto const attribute = AttributeIn(*buffer, list->attributes, index);
  if (!attribute.value) return attribute.status;
  if (list->attributes.known.index != known) References::Shared().Replace(list_number, *list);
  auto entry = AllocateEntry(&tAttributeEntry::fAttributeSignature, attribute.value->name.size());
  if (entry == nullptr) return eDSAllocationFailed;
  std::ranges::copy(attribute.value->name, DataOf(entry->fAttributeSignature));
  entry->fAttributeValueCount = attribute.value->values.count;
  entry->fAttributeDataSize = attribute.value->data_size;
  entry->fAttributeValueMaxSize = attribute.value->largest_size;
  UInt32 const opened =
      References::Shared().Add(OpenValueList{node, attribute.value->values}, status);
  if (status != eDSNoErr) return status;
  *result = entry.release();
  *values = opened;
  return eDSNoErr;
}

tDirStatus dsGetAttributeValue(tDirNodeReference node, tDataBufferPtr buffer, UInt32 index,
                               tAttributeValueListRef list_number,
                               tAttributeValueEntryPtr* result) {
  tDirStatus status = eDSNoErr;
  auto list = References::Shared().Find<OpenValueList>(list_number, status);
  if (!list) return status;
  if (list->node != node) return eDSInvalidAttrValueRef;
  if (buffer == nullptr) return eDSNullDataBuff;
  if (result == nullptr) return eDSNullParameter;
  UInt32 const known = list->values.known.index;
  auto const found = ValueIn(*buffer, list->values, index);
  if (!found.value) return found.status;
  if (list->values.known.index != known) References::Shared().Replace(list_number, *list);
  auto entry = AllocateEntry(&tAttributeValueEntry::fAttributeValueData, found.value->size());
  if (entry == nullptr) return eDSAllocationFailed;
  std::ranges::copy(*found.value, DataOf(entry->fAttributeValueData));
  entry->fAttributeValueID = index;
  *result = entry.release();
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
