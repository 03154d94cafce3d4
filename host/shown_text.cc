#include "host/shown_text.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace gatotu::host {
namespace {

// The upper half of Mac Roman as Unicode publishes it (ROMAN.TXT, with the euro sign at 0xDB).
constexpr std::array<std::uint16_t, 128> kMacRoman = {
    // clang-format off
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1,
    0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5, 0x00E7, 0x00E9, 0x00E8,
    0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC,
    0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6, 0x00DF,
    0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211,
    0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8,
    0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153,
    0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA,
    0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4,
    0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
    // clang-format on
};

// All are beyond ASCII and within the first plane: two or three bytes.
void AppendUtf8(std::string& text, std::uint16_t code) {
  auto const append = [&text](unsigned byte) { text += static_cast<char>(byte); };
  if (code < 0x800) {
    append(0xC0U | (code >> 6U));
  } else {
    append(0xE0U | (code >> 12U));
    append(0x80U | ((code >> 6U) & 0x3FU));
  }
  append(0x80U | (code & 0x3FU));
}

struct Sequence {
  std::size_t length;  // 0: no lead byte
  unsigned second_least;
  unsigned second_most;
};

// Which bytes may follow a lead byte (Unicode, table 3-7): no overlong forms, no surrogates,
// nothing beyond U+10FFFF.
Sequence SequenceOf(unsigned lead) {
  if (lead < 0x80) return {1, 0, 0};
  if (lead >= 0xC2 && lead <= 0xDF) return {2, 0x80, 0xBF};
  if (lead == 0xE0) return {3, 0xA0, 0xBF};
  if (lead == 0xED) return {3, 0x80, 0x9F};
  if (lead >= 0xE1 && lead <= 0xEF) return {3, 0x80, 0xBF};
  if (lead == 0xF0) return {4, 0x90, 0xBF};
  if (lead >= 0xF1 && lead <= 0xF3) return {4, 0x80, 0xBF};
  if (lead == 0xF4) return {4, 0x80, 0x8F};
  return {0, 0, 0};
}

}  // namespace

bool IsUtf8(std::string_view bytes) {
  auto const at = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  for (std::size_t i = 0; i < bytes.size();) {
    Sequence const sequence = SequenceOf(at(i));
    if (sequence.length == 0 || sequence.length > bytes.size() - i) return false;
    if (sequence.length > 1 &&
        (at(i + 1) < sequence.second_least || at(i + 1) > sequence.second_most)) {
      return false;
    }
    for (std::size_t k = 2; k < sequence.length; ++k) {
      if ((at(i + k) & 0xC0U) != 0x80U) return false;
    }
    i += sequence.length;
  }
  return true;
}

std::string_view ShownText(std::string_view bytes, std::string& storage) {
  if (IsUtf8(bytes)) return bytes;
  storage.clear();
  for (char const c : bytes) {
    auto const byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      storage += c;
    } else {
      AppendUtf8(storage, kMacRoman[byte - 0x80U]);
    }
  }
  return storage;
}

}  // namespace gatotu::host
