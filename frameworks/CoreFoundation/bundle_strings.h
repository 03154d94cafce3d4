// The `InfoPlist.strings` of a bundle: texts of the information dictionary in one language.
#pragma once

#include <CoreFoundation/CFDictionary.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "frameworks/CoreFoundation/first_file.h"

// For one thread. The languages are those that the machine in use preferred at the first call.
class BundleStrings {
 public:
  BundleStrings() = default;
  BundleStrings(BundleStrings const&) = delete;
  BundleStrings& operator=(BundleStrings const&) = delete;
  ~BundleStrings() { Drop(); }

  // Looks for the texts, and reads them unless they are as they were: those for all languages, else
  // of the first of `bundle_languages::Candidates`. The folder and the dictionary are the same at
  // each call.
  void Update(std::string const& resources, CFDictionaryRef info);

  // The dictionary with the texts put in place and added, null when none could be read. Borrowed
  // until the next update.
  CFDictionaryRef local_info() const { return local_info_; }
  // Of the file that was read.
  std::size_t bytes() const { return local_info_ == nullptr ? 0 : file_->state().bytes; }

 private:
  void Drop();

  std::vector<std::string> names_;
  std::optional<FirstFile> file_;
  CFDictionaryRef local_info_ = nullptr;
};
