#include "frameworks/CoreFoundation/bundle_version.h"

#include <algorithm>

namespace {

constexpr UInt32 kFinalStage = 0x80;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

UInt32 TakeDigit(std::string_view& text) {
  UInt32 const digit = static_cast<UInt32>(text.front() - '0');
  text.remove_prefix(1);
  return digit;
}

// A digit behind a full stop, or nothing when there is no full stop.
bool TakePart(std::string_view& text, UInt32& part) {
  part = 0;
  if (!text.starts_with('.')) return true;
  text.remove_prefix(1);
  if (text.empty() || !IsDigit(text.front())) return false;
  part = TakeDigit(text);
  return true;
}

// 0 for no stage.
UInt32 TakeStage(std::string_view& text) {
  if (text.empty()) return kFinalStage;
  char const stage = text.front();
  text.remove_prefix(stage == 'f' && text.starts_with("fc") ? 2 : 1);
  switch (stage) {
    case 'd':
      return 0x20;
    case 'a':
      return 0x40;
    case 'b':
      return 0x60;
    case 'f':
      return kFinalStage;
    default:
      return 0;
  }
}

}  // namespace

UInt32 PackedVersion(std::string_view text) {
  if (text.empty() || !IsDigit(text.front())) return 0;
  UInt32 major = TakeDigit(text), minor = 0, revision = 0, number = 0;
  if (!text.empty() && IsDigit(text.front())) major = major << 4 | TakeDigit(text);
  if (!TakePart(text, minor) || !TakePart(text, revision)) return 0;
  UInt32 const stage = TakeStage(text);
  if (stage == 0 || text.size() > 3 || !std::all_of(text.begin(), text.end(), IsDigit)) return 0;
  while (!text.empty()) number = 10 * number + TakeDigit(text);
  return number > 0xFF ? 0 : major << 24 | minor << 20 | revision << 16 | stage << 8 | number;
}
