#include "inspectors/activedirectory/directory/directory_calls.h"

namespace {

template <class Failed>
AutoODNodeRef OpenFirstNode(tDirReference service, tDirPatternMatch kind) {
  AutoODDataBuffer const buffer = ODBufferAllocate(service, kDirectoryBufferSize);
  UInt32 count = 0;
  tContextData context = nullptr;
  tDirStatus const status =
      dsFindDirNodes(service, buffer.Get().data, nullptr, kind, &count, &context);
  if (status != eDSNoErr) throw Failed();
  return ODOpenDirNode(service, ODGetDirNodeName(service, buffer, 1));
}

}  // namespace

AutoODReference ODOpenService() {
  tDirReference service = 0;
  if (dsOpenDirService(&service) != eDSNoErr) throw OpenDirectoryServiceNotAvailable();
  return AutoODReference(service);
}

AutoODDataBuffer ODBufferAllocate(tDirReference service, UInt32 size) {
  tDataBufferPtr const buffer = dsDataBufferAllocate(service, size);
  if (buffer == nullptr) throw ODDataBufferAllocFailed();
  return AutoODDataBuffer({buffer, service});
}

AutoODDataList ODBuildListFromString(tDirReference service, std::string const& text) {
  if (text.find('\0') != std::string::npos) throw ODBuildListFromStringFailed();
  tDataListPtr const list = dsBuildListFromStrings(service, text.c_str(), nullptr);
  if (list == nullptr) throw ODBuildListFromStringFailed();
  return AutoODDataList(list);
}

AutoODDataList ODBuildListFromPath(tDirReference service, std::string const& path,
                                   std::string const& separator) {
  tDataListPtr const list = dsBuildFromPath(service, path.c_str(), separator.c_str());
  if (list == nullptr) throw ODBuildListFromPathFailed();
  return AutoODDataList(list);
}

AutoODNodeRef ODGetSearchDirNode(tDirReference service) {
  return OpenFirstNode<ODGetSearchDirNodeFailed>(service, eDSSearchNodeName);
}

AutoODNodeRef ODGetLocalHostedNode(tDirReference service) {
  return OpenFirstNode<ODGetLocalHostedNodeFailed>(service, eDSLocalHostedNodes);
}

AutoODDataList ODGetDirNodeName(tDirReference service, AutoODDataBuffer const& buffer,
                                UInt32 index) {
  tDataListPtr name = nullptr;
  tDirStatus const status = dsGetDirNodeName(service, buffer.Get().data, index, &name);
  AutoODDataList owned(name);
  if (status != eDSNoErr || name == nullptr) throw ODGetDirNodeNameFailed();
  return owned;
}

AutoODNodeRef ODOpenDirNode(tDirReference service, AutoODDataList const& name) {
  tDirNodeReference node = 0;
  tDirStatus const status = dsOpenDirNode(service, name.Get(), &node);
  AutoODNodeRef owned(node);
  if (status != eDSNoErr || node == 0) throw ODOpenDirNodeFailed();
  return owned;
}

AutoODRecordEntryAttrList ODGetRecordEntry(tDirNodeReference node, AutoODDataBuffer const& buffer,
                                           UInt32 index) {
  tRecordEntryPtr entry = nullptr;
  tAttributeListRef attributes = 0;
  tDirStatus const status = dsGetRecordEntry(node, buffer.Get().data, index, &attributes, &entry);
  AutoODRecordEntryAttrList owned = {AutoODRecordEntry(entry), AutoODAttrList(attributes)};
  if (status != eDSNoErr || entry == nullptr || attributes == 0) throw ODGetRecordEntryFailed();
  return owned;
}

AutoODAttrEntryAttrValueList ODGetAttributeEntry(tDirNodeReference node,
                                                 AutoODDataBuffer const& buffer,
                                                 AutoODAttrList const& attributes, UInt32 index) {
  tAttributeEntryPtr entry = nullptr;
  tAttributeValueListRef values = 0;
  tDirStatus const status =
      dsGetAttributeEntry(node, buffer.Get().data, attributes.Get(), index, &values, &entry);
  AutoODAttrEntryAttrValueList owned = {AutoODAttrEntry(entry), AutoODAttrValueList(values)};
  if (status != eDSNoErr || entry == nullptr || values == 0) throw ODGetAttributeEntryFailed();
  return owned;
}

AutoODAttrValueEntry ODGetAttributeValue(tDirNodeReference node, AutoODDataBuffer const& buffer,
                                         UInt32 index, AutoODAttrValueList const& values) {
  tAttributeValueEntryPtr value = nullptr;
  tDirStatus const status =
      dsGetAttributeValue(node, buffer.Get().data, index, values.Get(), &value);
  AutoODAttrValueEntry owned(value);
  if (status != eDSNoErr || value == nullptr) throw ODGetAttrValueFailed();
  return owned;
}

ConstData ODGetAttributeValueData(AutoODAttrValueEntry const& value) {
  if (value.Get() == nullptr) throw ODGetAttributeValueDataFailed();
  tDataNode const& data = value.Get()->fAttributeValueData;
  return {reinterpret_cast<unsigned char const*>(data.fBufferData), data.fBufferLength};
}
