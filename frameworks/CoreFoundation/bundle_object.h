// A bundle as it is kept: its folder, and the information dictionary as it was when the bundle was
// opened.
#pragma once

#include <CoreFoundation/CFBundle.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

#include "frameworks/CoreFoundation/bundle_strings.h"
#include "frameworks/CoreFoundation/first_file.h"
#include "frameworks/CoreFoundation/object.h"

struct __CFBundle final : CFObject {
 public:
  // Null when the folder, a path without a `/` at its end, is no bundle of the machine in use.
  static CFBundleRef Open(std::string folder);

  // Empty for the root.
  std::string const& folder() const { return folder_; }
  // One of `bundle_layout::Descriptions`, where and as it was when the bundle was opened.
  FirstFile const& description() const { return description_; }
  // Asks the machine whether it still is.
  bool IsStillDescribed() const;
  // What was not asked before another machine was chosen cannot be asked any more.
  bool is_of_machine_in_use() const;

  CFDictionaryRef info() const { return info_; }
  // Null when it is absent or of another type.
  CFStringRef InfoText(CFStringRef key) const;
  CFStringRef identifier() const { return identifier_; }

  // Found at the first call, and at the first one after `Renew`.
  CFDictionaryRef local_info();
  // For a bundle that nobody held and someone is to hold again.
  void Renew() { is_local_known_ = false; }

  // Of the files that its dictionaries were made from.
  std::size_t bytes() const { return bytes_; }

  ~__CFBundle() override;

  // For `CFObject::Make` alone.
  __CFBundle(std::string folder, FirstFile const& description);

 private:
  std::string const folder_;
  FirstFile const description_;
  std::uint64_t const machine_number_;
  CFDictionaryRef const info_;    // null when it could not be read
  CFStringRef const identifier_;  // borrowed from `info_`
  std::atomic<std::size_t> bytes_ = 0;

  std::atomic<bool> is_local_known_ = false;
  std::mutex guard_;  // of the strings
  BundleStrings strings_;
};
