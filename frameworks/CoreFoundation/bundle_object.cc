#include "frameworks/CoreFoundation/bundle_object.h"

#include "frameworks/CoreFoundation/bundle_layout.h"
#include "frameworks/CoreFoundation/bundle_table.h"
#include "machine/machine.h"

CFBundleRef __CFBundle::Open(std::string folder) {
  FirstFile const description(folder, bundle_layout::Descriptions());
  if (!description.is_found()) return nullptr;
  return CFObject::Make<__CFBundle>(std::move(folder), description);
}

__CFBundle::__CFBundle(std::string folder, FirstFile const& description)
    : CFObject(kCFTypeBundle),
      folder_(std::move(folder)),
      description_(description),
      machine_number_(machine::CurrentMachineNumber()),
      info_(bundle_layout::ReadInfo(folder_, description.index())),
      identifier_(InfoText(kCFBundleIdentifierKey)),
      bytes_(info_ == nullptr ? 0 : description.state().bytes) {}

__CFBundle::~__CFBundle() {
  if (info_ != nullptr) CFRelease(info_);
}

bool __CFBundle::IsStillDescribed() const {
  return description_.IsStillIn(folder_, bundle_layout::Descriptions());
}

bool __CFBundle::is_of_machine_in_use() const {
  return machine_number_ == machine::CurrentMachineNumber();
}

CFStringRef __CFBundle::InfoText(CFStringRef key) const {
  void const* const value = info_ == nullptr ? nullptr : CFDictionaryGetValue(info_, key);
  bool const is_text = value != nullptr && CFGetTypeID(value) == CFStringGetTypeID();
  return is_text ? static_cast<CFStringRef>(value) : nullptr;
}

CFDictionaryRef __CFBundle::local_info() {
  if (info_ == nullptr) return nullptr;
  std::lock_guard lock(guard_);
  if (!is_local_known_.exchange(true) && is_of_machine_in_use()) {
    strings_.Update(bundle_layout::ResourcesPath(folder_, description_.index()), info_);
    bytes_ = description_.state().bytes + strings_.bytes();
    BundleTable::OfProcess().Weigh(this);
  }
  return strings_.local_info() != nullptr ? strings_.local_info() : info_;
}
