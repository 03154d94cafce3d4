// One component of a path, as the platform's long Unicode name.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>

#include <string>

#include "portable/const_data.h"
#include "portable/core_foundation/auto_cf.h"
#include "portable/file_errors.h"
#include "portable/stringy.h"

struct HFSUniStr255;

namespace MacintoshPlatform {

// At most 255 UTF-16 units; what makes more throws `IllegalFileNameLength`. Bytes of the file
// system that are no UTF-8 are kept (`frameworks/CoreFoundation/file_system_text.h`).
//
// Where case may be ignored, the letters `b` to `z` stand for their capitals. The letter `a` does
// not: `Abc` differs from `abc` even so, while `Xyz` equals `xyz`.
class GATOTU_API FileName {
 public:
  static constexpr unsigned long kMaxCount = 255;

  FileName() = default;
  explicit FileName(CFStringRef name) { Set(name); }
  explicit FileName(HFSUniStr255 const& name);
  // UTF-8, or any bytes of the file system.
  explicit FileName(ConstData bytes);
  FileName(char const* bytes, unsigned long length) : FileName(ConstData(bytes, length)) {}
  // `CFStringCreateError` for what is no text in the encoding.
  FileName(char const* text, CFStringEncoding encoding) { Set(text, encoding); }

  void Set(CFStringRef name);
  void Set(char const* text, CFStringEncoding encoding);

  UInt16 Count() const { return count_; }
  UniChar const* Units() const { return units_; }
  bool IsEmpty() const { return count_ == 0; }
  // The same name as the platform's calls take it.
  HFSUniStr255 MakeHFSUniStr255() const;

  AutoCFString MakeCFString() const;
  std::string MakeUTF8String() const;
  explicit operator Stringy() const { return Stringy(ConstData(MakeUTF8String())); }

  FileName Concatenate(FileName const& rest) const;

  // A prefix, suffix or extension as text is UTF-8.
  bool HasPrefix(FileName const& prefix, bool ignore_case) const;
  bool HasPrefix(char const* prefix, bool ignore_case) const;
  bool HasSuffix(FileName const& suffix, bool ignore_case) const;
  bool HasSuffix(char const* suffix, bool ignore_case) const;
  // The name ends in the extension, with a `.` before it unless the extension brings its own.
  bool HasExtension(FileName const& extension, bool ignore_case) const;
  bool HasExtension(char const* extension, bool ignore_case) const;

  // The rest behind the prefix; `PrefixDoesNotMatch`.
  FileName NameAfterPrefix(FileName const& prefix, bool ignore_case) const;
  FileName NameAfterPrefix(char const* prefix, bool ignore_case) const;
  // The name without the extension and its dot; `ExtensionDoesNotMatch`.
  FileName NameBeforeExtension(FileName const& extension, bool ignore_case) const;
  FileName NameBeforeExtension(char const* extension, bool ignore_case) const;

  // Before the last `.`, or all of it.
  FileName BaseName() const;
  // The decimal digits it begins with, perhaps none.
  FileName PrefixDigits() const;

  enum class Kind { kPlain, kApplication, kBundle, kPackage };
  // What the part behind the last `.` says, in any case of its letters.
  Kind ExtensionType() const;

  // See `MatchesWildCardInternal`.
  bool MatchesWildCard(char const* pattern) const;

 private:
  FileName Part(unsigned long begin, unsigned long end) const;
  void Assign(UniChar const* units, unsigned long count);

  UInt16 count_ = 0;
  UniChar units_[kMaxCount];
};

GATOTU_API bool Equal(FileName const& a, FileName const& b);
GATOTU_API bool EqualIgnoringCase(FileName const& a, FileName const& b);
// Negative, 0 or positive by units; a prefix of a name comes before it.
GATOTU_API int StrCmp(FileName const& a, FileName const& b);

}  // namespace MacintoshPlatform

using MacintoshPlatform::FileName;
