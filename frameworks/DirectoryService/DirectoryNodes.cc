// The service and its nodes.
#include <DirectoryService/DirServices.h>

#include <utility>

#include "frameworks/DirectoryService/answer_buffer.h"
#include "frameworks/DirectoryService/data_lists.h"
#include "frameworks/DirectoryService/references.h"

using namespace directory_service;

namespace {

struct NodeName {
  char const* path;
  machine::DirectoryNode node;
};
constexpr NodeName kNodes[] = {{machine::kSearchNode, machine::DirectoryNode::kSearch},
                               {machine::kLocalNode, machine::DirectoryNode::kLocal}};

// The index of a pattern's kind of node.
bool IsOfKind(NodeName const& node, tDirPatternMatch kind, tDataListPtr pattern) {
  bool const is_search = node.node == machine::DirectoryNode::kSearch;
  if (kind == eDSSearchNodeName) return is_search;
  if (kind == eDSLocalHostedNodes || kind == eDSLocalNodeNames) return !is_search;
  return PathOf(*pattern) == node.path;
}

bool IsKind(tDirPatternMatch kind) {
  return kind == eDSSearchNodeName || kind == eDSLocalHostedNodes || kind == eDSLocalNodeNames;
}

}  // namespace

tDirStatus dsOpenDirService(tDirReference* reference) {
  if (reference == nullptr) return eDSNullParameter;
  tDirStatus status = eDSNoErr;
  *reference = References::Shared().Add(OpenService(), status);
  return status;
}

tDirStatus dsCloseDirService(tDirReference reference) {
  return References::Shared().Close<OpenService>(reference);
}

tDirStatus dsFindDirNodes(tDirReference reference, tDataBufferPtr buffer, tDataListPtr pattern,
                          tDirPatternMatch kind, UInt32* count, tContextData*) {
  tDirStatus const status = References::Shared().StatusOf<OpenService>(reference);
  if (status != eDSNoErr) return status;
  if (buffer == nullptr) return eDSNullDataBuff;
  if (count == nullptr) return eDSNullParameter;
  if (!IsKind(kind) && kind != eDSExact && kind != eDSiExact) return eDSUnSupportedMatchType;
  if (!IsKind(kind) && pattern == nullptr) return eDSNullPatternMatch;
  AnswerWriter writer(*buffer, Content::kNodeNames);
  for (NodeName const& node : kNodes) {
    if (IsOfKind(node, kind, pattern) && !writer.Append(node.path)) return eDSBufferTooSmall;
  }
  *count = writer.Finish();
  return *count == 0 ? eDSNodeNotFound : eDSNoErr;
}

tDirStatus dsGetDirNodeName(tDirReference reference, tDataBufferPtr buffer, UInt32 index,
                            tDataListPtr* list) {
  tDirStatus const status = References::Shared().StatusOf<OpenService>(reference);
  if (status != eDSNoErr) return status;
  if (buffer == nullptr) return eDSNullDataBuff;
  if (list == nullptr) return eDSNullParameter;
  Expected<std::string_view> const name = NodeNameIn(*buffer, index);
  if (!name.value) return name.status;
  tDataListPtr const parts = dsBuildFromPath(reference, std::string(*name.value).c_str(), "/");
  if (parts == nullptr) return eDSAllocationFailed;
  *list = parts;
  return eDSNoErr;
}

tDirStatus dsOpenDirNode(tDirReference reference, tDataListPtr name, tDirNodeReference* node) {
  tDirStatus status = References::Shared().StatusOf<OpenService>(reference);
  if (status != eDSNoErr) return status;
  if (name == nullptr) return eDSNullNodeName;
  if (node == nullptr) return eDSNullParameter;
  std::string const path = PathOf(*name);
  for (NodeName const& known : kNodes) {
    if (path != known.path) continue;
    auto const opened = std::make_shared<Node>();
    opened->service = reference;
    opened->node = known.node;
    UInt32 const number = References::Shared().Add(opened, status);
    if (status == eDSNoErr) *node = number;
    return status;
  }
  return eDSOpenNodeFailed;
}

tDirStatus dsCloseDirNode(tDirNodeReference node) {
  return References::Shared().Close<OpenNode>(node);
}
