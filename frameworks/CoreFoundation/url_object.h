// A URL as it is kept: what stands before the path, the path, and what stands behind it.
#pragma once

#include <CoreFoundation/CFURL.h>

#include <atomic>
#include <string>
#include <string_view>

#include "frameworks/CoreFoundation/object.h"

struct __CFURL final : CFObject {
 public:
  struct Parts {
    std::string prefix;  // scheme and authority, "file://" of a path; empty for a relative URL
    std::string path;    // of a file without its escapes, else as written
    std::string suffix;  // query and fragment
  };

  // Never null. `base` is borrowed and only there for a relative URL.
  static CFURLRef OfFile(std::string path, CFURLRef base = nullptr);
  static CFURLRef Of(Parts parts, bool is_file, CFURLRef base);

  bool is_file() const { return is_file_; }
  Parts const& parts() const { return parts_; }
  CFURLRef base() const { return base_; }
  // Made when it is first asked for.
  CFStringRef text() const;
  // The path with the base's before it where there is one.
  std::string AbsolutePath() const;

  bool EqualTo(CFObject const& other) const override;
  CFHashCode Hash() const override;
  ~__CFURL() override;

  // For `CFObject::Make` alone.
  __CFURL(Parts parts, bool is_file, CFURLRef base);

 private:
  Parts parts_;
  bool is_file_;
  CFURLRef base_;
  mutable std::atomic<CFStringRef> text_ = nullptr;
};
