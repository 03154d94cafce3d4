// A bundle as it is kept: its folder, and the information dictionary as it was when the bundle was
// opened.
#pragma once

#include <CoreFoundation/CFBundle.h>

#include <cstdint>
#include <string>

#include "frameworks/CoreFoundation/bundle_layout.h"
#include "frameworks/CoreFoundation/object.h"

struct __CFBundle final : CFObject {
 public:
  // Null when the folder is no bundle of the machine in use.
  static CFBundleRef Open(std::string folder);

  std::string const& folder() const { return folder_; }
  bundle_layout::Description const& description() const { return description_; }
  CFDictionaryRef info() const { return info_; }
  CFDictionaryRef local_info();
  // What was not asked before another machine was chosen cannot be asked any more.
  bool is_of_machine_in_use() const;
  // Null when it is absent or of another type.
  CFStringRef InfoText(CFStringRef key) const;

  ~__CFBundle() override;

  // For `CFObject::Make` alone.
  __CFBundle(std::string folder, bundle_layout::Description const& description);

 private:
  std::string const folder_;
  bundle_layout::Description const description_;
  std::uint64_t const machine_number_;
  CFDictionaryRef const info_;  // null when it could not be read
};
