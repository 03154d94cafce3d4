#include <DirectoryService/DirServicesUtils.h>

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "frameworks/DirectoryService/data_lists.h"

namespace {

// A node of a list, with what comes next in front of what others see.
struct ListNode {
  ListNode* next;
  tDataNode node;
};

ListNode* ListNodeOf(tDataNodePtr node) {
  return reinterpret_cast<ListNode*>(reinterpret_cast<char*>(node) - offsetof(ListNode, node));
}

// Zeroed, so that a NUL follows the data.
constexpr std::size_t kHead = offsetof(tDataBuffer, fBufferData);

void Fill(tDataNode& node, std::string_view text) {
  node.fBufferSize = node.fBufferLength = static_cast<UInt32>(text.size());
  std::memcpy(reinterpret_cast<char*>(&node) + kHead, text.data(), text.size());
}

bool Append(tDataList& list, std::string_view text) {
  auto* const added =
      static_cast<ListNode*>(std::calloc(1, offsetof(ListNode, node) + kHead + text.size() + 1));
  if (added == nullptr) return false;
  Fill(added->node, text);
  ++list.fDataNodeCount;
  if (list.fDataListHead == nullptr) {
    list.fDataListHead = &added->node;
    return true;
  }
  ListNode* last = ListNodeOf(list.fDataListHead);
  while (last->next != nullptr) last = last->next;
  last->next = added;
  return true;
}

char* CopyText(std::string const& text) { return ::strndup(text.data(), text.size()); }

// The text at an index of a record entry's name and type.
tDirStatus CopyFromEntry(tRecordEntryPtr entry, int index, char** text) {
  if (entry == nullptr || text == nullptr) return eDSNullParameter;
  std::string_view rest = TextOf(entry->fRecordNameAndType);
  for (;; --index) {
    UInt16 length = 0;
    if (rest.size() < sizeof length) return eDSCorruptBuffer;
    std::memcpy(&length, rest.data(), sizeof length);
    rest.remove_prefix(sizeof length);
    if (rest.size() < length) return eDSCorruptBuffer;
    if (index == 0) {
      *text = ::strndup(rest.data(), length);
      return *text == nullptr ? eDSAllocationFailed : eDSNoErr;
    }
    rest.remove_prefix(length);
  }
}

}  // namespace

std::string_view TextOf(tDataNode const& node) {
  return {reinterpret_cast<char const*>(&node) + kHead, node.fBufferLength};
}

std::vector<std::string> StringsOf(tDataList const& list) {
  std::vector<std::string> strings;
  if (list.fDataListHead == nullptr) return strings;
  for (ListNode const* node = ListNodeOf(list.fDataListHead); node != nullptr; node = node->next) {
    strings.emplace_back(TextOf(node->node));
  }
  return strings;
}

std::string PathOf(tDataList const& list) {
  std::string path;
  for (std::string const& part : StringsOf(list)) path.append("/").append(part);
  return path;
}

tDataListPtr MakeDataList(std::vector<std::string> const& strings) {
  auto* const list = static_cast<tDataListPtr>(std::calloc(1, sizeof(tDataList)));
  if (list == nullptr) return nullptr;
  for (std::string const& text : strings) {
    if (Append(*list, text)) continue;
    dsDataListDeallocate(0, list);
    std::free(list);
    return nullptr;
  }
  return list;
}

tDataBufferPtr dsDataBufferAllocate(tDirReference, UInt32 size) {
  auto* const buffer = static_cast<tDataBufferPtr>(std::calloc(1, kHead + size + std::size_t{1}));
  if (buffer != nullptr) buffer->fBufferSize = size;
  return buffer;
}

tDirStatus dsDataBufferDeAllocate(tDirReference, tDataBufferPtr buffer) {
  if (buffer == nullptr) return eDSNullDataBuff;
  std::free(buffer);
  return eDSNoErr;
}

tDataNodePtr dsDataNodeAllocateString(tDirReference reference, char const* text) {
  if (text == nullptr) return nullptr;
  tDataNodePtr const node = dsDataBufferAllocate(reference, static_cast<UInt32>(std::strlen(text)));
  if (node != nullptr) Fill(*node, text);
  return node;
}

tDirStatus dsDataNodeDeAllocate(tDirReference reference, tDataNodePtr node) {
  return node == nullptr ? eDSNullParameter : dsDataBufferDeAllocate(reference, node);
}

tDataListPtr dsBuildListFromStrings(tDirReference, char const* first, ...) {
  if (first == nullptr) return nullptr;
  std::vector<std::string> strings;
  va_list more;
  va_start(more, first);
  for (char const* text = first; text != nullptr; text = va_arg(more, char const*)) {
    strings.emplace_back(text);
  }
  va_end(more);
  return MakeDataList(strings);
}

tDataListPtr dsBuildFromPath(tDirReference, char const* path, char const* separator) {
  if (path == nullptr || separator == nullptr || *separator == '\0') return nullptr;
  std::string_view rest = path;
  std::vector<std::string> parts;
  while (!rest.empty()) {
    std::string_view const part = rest.substr(0, rest.find(separator));
    if (!part.empty()) parts.emplace_back(part);
    rest.remove_prefix(std::min(part.size() + std::strlen(separator), rest.size()));
  }
  return MakeDataList(parts);
}

tDirStatus dsAppendStringToListAlloc(tDirReference, tDataList* list, char const* text) {
  if (list == nullptr) return eDSNullDataList;
  if (text == nullptr) return eDSNullParameter;
  return Append(*list, text) ? eDSNoErr : eDSAllocationFailed;
}

tDirStatus dsDataListDeallocate(tDirReference, tDataListPtr list) {
  if (list == nullptr) return eDSNullDataList;
  ListNode* node = list->fDataListHead == nullptr ? nullptr : ListNodeOf(list->fDataListHead);
  while (node != nullptr) std::free(std::exchange(node, node->next));
  *list = {};
  return eDSNoErr;
}

char* dsGetPathFromList(tDirReference, tDataList const* list, char const* delimiter) {
  if (list == nullptr || delimiter == nullptr) return nullptr;
  std::string path;
  for (std::string const& part : StringsOf(*list)) path.append(delimiter).append(part);
  return CopyText(path);
}

tDirStatus dsGetRecordNameFromEntry(tRecordEntryPtr entry, char** name) {
  return CopyFromEntry(entry, 0, name);
}

tDirStatus dsGetRecordTypeFromEntry(tRecordEntryPtr entry, char** type) {
  return CopyFromEntry(entry, 1, type);
}
