#include "frameworks/CoreServices/file_names.h"

#include <algorithm>

#include "frameworks/CoreFoundation/file_system_text.h"

namespace {

constexpr std::size_t kMostBytes = 255;

bool IsHigh(UniChar unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLow(UniChar unit) { return unit >= 0xDC00 && unit < 0xE000; }
bool StandsForByte(UniChar unit) { return unit >= 0xDC80 && unit <= 0xDCFF; }

// No separator, no NUL, and no half of a surrogate pair but one that stands for a byte.
bool AreUnitsOfName(UniChar const* name, UniCharCount length) {
  for (UniCharCount i = 0; i < length; ++i) {
    UniChar const unit = name[i];
    if (unit == 0 || unit == '/') return false;
    if (IsHigh(unit)) {
      if (++i == length || !IsLow(name[i])) return false;
    } else if (IsLow(unit) && !StandsForByte(unit)) {
      return false;
    }
  }
  return true;
}

}  // namespace

HFSUniStr255 UnicodeName(std::string_view bytes) {
  HFSUniStr255 name = {};
  // There are never more units than bytes.
  std::vector<UniChar> const units = file_system_text::UnitsOf(bytes.substr(0, kMostBytes));
  std::copy(units.begin(), units.end(), name.unicode);
  name.length = static_cast<UInt16>(units.size());
  return name;
}

std::optional<std::string> NameOnDisk(UniChar const* name, UniCharCount length) {
  if (length > kMostBytes || !AreUnitsOfName(name, length)) return {};
  std::string bytes = file_system_text::BytesOf(name, length);
  if (bytes.empty() || bytes.size() > kMostBytes || bytes == "." || bytes == "..") return {};
  return bytes;
}
