#include <CoreFoundation/CFPropertyList.h>

#include <span>
#include <string>
#include <vector>

#include "frameworks/CoreFoundation/binary_property_list.h"
#include "frameworks/CoreFoundation/property_list_source.h"
#include "frameworks/CoreFoundation/text_property_list_reader.h"
#include "frameworks/CoreFoundation/xml_property_list_reader.h"
#include "frameworks/CoreFoundation/xml_property_list_writer.h"

namespace {

std::span<UInt8 const> BytesOf(CFDataRef data) {
  return {CFDataGetBytePtr(data), static_cast<std::size_t>(CFDataGetLength(data))};
}

CFDataRef MakeData(void const* bytes, std::size_t length) {
  return CFDataCreate(nullptr, static_cast<UInt8 const*>(bytes), static_cast<CFIndex>(length));
}

// XML or the old text form; the reason gets the line where it went wrong.
CFPropertyListRef ReadText(std::span<UInt8 const> bytes, CFOptionFlags options,
                           CFPropertyListFormat& format, PropertyListError& error) {
  PropertyListSource const source(bytes.data(), bytes.size());
  if (source.failure() != nullptr) {
    error.message = source.failure();
    return nullptr;
  }
  bool const is_xml = LooksLikeXml(source.text());
  format = is_xml ? kCFPropertyListXMLFormat_v1_0 : kCFPropertyListOpenStepFormat;
  CFPropertyListRef const root = is_xml ? ReadXmlPropertyList(source.text(), options, error)
                                        : ReadTextPropertyList(source.text(), options, error);
  if (root == nullptr) {
    error.message += " on line " + std::to_string(source.LineOf(error.position));
  }
  return root;
}

CFPropertyListRef Read(CFDataRef data, CFOptionFlags options, CFPropertyListFormat& format,
                       PropertyListError& error) {
  if (data == nullptr || CFDataGetLength(data) == 0) {
    error.message = "There is nothing to read";
    return nullptr;
  }
  std::span<UInt8 const> const bytes = BytesOf(data);
  if (!IsBinaryPropertyList(bytes)) return ReadText(bytes, options, format, error);
  format = kCFPropertyListBinaryFormat_v1_0;
  CFPropertyListRef const root = ReadBinaryPropertyList(bytes, error);
  if (root == nullptr) error.message += " at byte " + std::to_string(error.position);
  return root;
}

}  // namespace

CFPropertyListRef CFPropertyListCreateFromXMLData(CFAllocatorRef, CFDataRef xmlData,
                                                  CFOptionFlags mutabilityOption,
                                                  CFStringRef* errorString) {
  PropertyListError error;
  CFPropertyListFormat format;
  CFPropertyListRef const root = Read(xmlData, mutabilityOption, format, error);
  if (errorString != nullptr) {
    *errorString = root != nullptr ? nullptr
                                   : CFStringCreateWithCString(nullptr, error.message.c_str(),
                                                               kCFStringEncodingUTF8);
  }
  return root;
}

CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef, CFDataRef data,
                                               CFOptionFlags options, CFPropertyListFormat* format,
                                               CFErrorRef* error) {
  PropertyListError reason;
  CFPropertyListFormat found;
  CFPropertyListRef const root = Read(data, options, found, reason);
  if (root != nullptr && format != nullptr) *format = found;
  if (error != nullptr) *error = nullptr;
  return root;
}

CFDataRef CFPropertyListCreateXMLData(CFAllocatorRef, CFPropertyListRef propertyList) {
  PropertyListError error;
  std::string text;
  if (!WriteXmlPropertyList(propertyList, text, error)) return nullptr;
  return MakeData(text.data(), text.size());
}

CFDataRef CFPropertyListCreateData(CFAllocatorRef allocator, CFPropertyListRef propertyList,
                                   CFPropertyListFormat format, CFOptionFlags options,
                                   CFErrorRef* error) {
  if (error != nullptr) *error = nullptr;
  if (options != 0) return nullptr;
  if (format == kCFPropertyListXMLFormat_v1_0) {
    return CFPropertyListCreateXMLData(allocator, propertyList);
  }
  PropertyListError reason;
  std::vector<UInt8> bytes;
  if (format != kCFPropertyListBinaryFormat_v1_0 ||
      !WriteBinaryPropertyList(propertyList, bytes, reason)) {
    return nullptr;
  }
  return MakeData(bytes.data(), bytes.size());
}
