#include "frameworks/CoreFoundation/bundle_object.h"

#include "machine/machine.h"

using bundle_layout::Description;

CFBundleRef __CFBundle::Open(std::string folder) {
  auto const description = bundle_layout::FindDescription(folder);
  return description ? CFObject::Make<__CFBundle>(std::move(folder), *description) : nullptr;
}

__CFBundle::__CFBundle(std::string folder, Description const& description)
    : CFObject(kCFTypeBundle),
      folder_(std::move(folder)),
      description_(description),
      machine_number_(machine::CurrentMachineNumber()),
      info_(description.is_info ? bundle_layout::ReadDictionary(
                                      bundle_layout::InfoPath(folder_, description.layout))
                                : nullptr) {}

__CFBundle::~__CFBundle() {
  if (info_ != nullptr) CFRelease(info_);
}

bool __CFBundle::is_of_machine_in_use() const {
  return machine_number_ == machine::CurrentMachineNumber();
}

CFDictionaryRef __CFBundle::local_info() { return info_; }

CFStringRef __CFBundle::InfoText(CFStringRef key) const {
  void const* const value = info_ == nullptr ? nullptr : CFDictionaryGetValue(info_, key);
  bool const is_text = value != nullptr && CFGetTypeID(value) == CFStringGetTypeID();
  return is_text ? static_cast<CFStringRef>(value) : nullptr;
}
