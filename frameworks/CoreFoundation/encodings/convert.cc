#include "frameworks/CoreFoundation/encodings/convert.h"

#include <bit>
#include <cstring>
#include <optional>

#include "frameworks/CoreFoundation/encodings/single_byte.h"

namespace encodings {
namespace {

constexpr UInt32 kByteOrderMark = 0xFEFF;
constexpr bool kIsLittleEndian = std::endian::native == std::endian::little;

constexpr bool IsLead(UInt32 unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsTrail(UInt32 unit) { return unit >= 0xDC00 && unit < 0xE000; }
constexpr bool IsSurrogate(UInt32 unit) { return unit >= 0xD800 && unit < 0xE000; }

void Append(std::vector<UniChar>& text, UInt32 character) {
  if (character >= 0x10000) {
    text.push_back(static_cast<UniChar>(0xD7C0 + (character >> 10)));
    character = 0xDC00 + (character & 0x3FF);
  }
  text.push_back(static_cast<UniChar>(character));
}

// Writes the code of `width` bytes in the given order.
int PutCode(UInt32 code, int width, bool is_little_endian, UInt8* out) {
  for (int i = 0; i < width; ++i) {
    int const shift = 8 * (is_little_endian ? i : width - 1 - i);
    out[i] = static_cast<UInt8>(code >> shift);
  }
  return width;
}

UInt32 GetCode(UInt8 const* bytes, int width, bool is_little_endian) {
  UInt32 code = 0;
  for (int i = 0; i < width; ++i) {
    code = code << 8 | bytes[is_little_endian ? width - 1 - i : i];
  }
  return code;
}

// Each encoding writes one character into at most four bytes and tells how many; 0 when it lacks
// the character. An unpaired surrogate comes as its own number.

int PutUtf8(UInt32 c, UInt8* out) {
  if (c < 0x80) {
    out[0] = static_cast<UInt8>(c);
    return 1;
  }
  if (IsSurrogate(c)) return 0;
  int const more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
  constexpr UInt8 kFirst[] = {0, 0xC0, 0xE0, 0xF0};
  out[0] = static_cast<UInt8>(kFirst[more] | c >> (6 * more));
  for (int i = 1; i <= more; ++i)
    out[i] = static_cast<UInt8>(0x80 | (c >> (6 * (more - i)) & 0x3F));
  return more + 1;
}

template <UInt32 kLimit>
int PutLow(UInt32 c, UInt8* out) {
  out[0] = static_cast<UInt8>(c);
  return c < kLimit ? 1 : 0;
}

template <ReverseTable const& kTable>
int PutByTable(UInt32 c, UInt8* out) {
  out[0] = c < 0x80 ? static_cast<UInt8>(c) : FindByte(kTable, c);
  return c < 0x80 || out[0] != 0 ? 1 : 0;
}

template <bool kLittle>
int PutUtf16(UInt32 c, UInt8* out) {
  if (c < 0x10000) return PutCode(c, 2, kLittle, out);
  PutCode(0xD7C0 + (c >> 10), 2, kLittle, out);
  return 2 + PutCode(0xDC00 + (c & 0x3FF), 2, kLittle, out + 2);
}

template <bool kLittle>
int PutUtf32(UInt32 c, UInt8* out) {
  return IsSurrogate(c) ? 0 : PutCode(c, 4, kLittle, out);
}

using Put = int (*)(UInt32 character, UInt8* out);

template <Put put>
Conversion EncodeBy(UniChar const* text, std::size_t length, UInt8 loss_byte, bool has_mark,
                    UInt8* buffer, std::size_t capacity) {
  Conversion done;
  UInt8 code[4];
  auto const write = [&](int size) {
    auto const count = static_cast<std::size_t>(size);
    if (buffer != nullptr) {
      if (count > capacity - done.bytes) return false;
      std::memcpy(buffer + done.bytes, code, count);
    }
    done.bytes += count;
    return true;
  };
  if (has_mark && !write(put(kByteOrderMark, code))) return done;
  while (done.units < length) {
    UInt32 character = text[done.units];
    std::size_t units = 1;
    if (IsLead(character) && done.units + 1 < length && IsTrail(text[done.units + 1])) {
      character = 0x10000 + ((character - 0xD800) << 10) + (text[done.units + 1] - 0xDC00u);
      units = 2;
    }
    int size = put(character, code);
    if (size == 0) {
      if (loss_byte == 0) return done;
      bool const is_wide = put == PutUtf32<true> || put == PutUtf32<false>;
      code[0] = loss_byte;
      size = is_wide ? put(loss_byte, code) : 1;
    }
    if (!write(size)) return done;
    done.units += units;
  }
  return done;
}

struct Encoder {
  Conversion (*encode)(UniChar const*, std::size_t, UInt8, bool, UInt8*, std::size_t);
  bool takes_mark = false;
};

std::optional<Encoder> FindEncoder(CFStringEncoding encoding) {
  switch (encoding) {
    case kCFStringEncodingASCII:
      return Encoder{EncodeBy<PutLow<0x80>>};
    case kCFStringEncodingISOLatin1:
      return Encoder{EncodeBy<PutLow<0x100>>};
    case kCFStringEncodingMacRoman:
      return Encoder{EncodeBy<PutByTable<kMacRomanReverse>>};
    case kCFStringEncodingWindowsLatin1:
      return Encoder{EncodeBy<PutByTable<kWindowsLatin1Reverse>>};
    case kCFStringEncodingUTF8:
      return Encoder{EncodeBy<PutUtf8>};
    case kCFStringEncodingUTF16:
      return Encoder{EncodeBy<PutUtf16<kIsLittleEndian>>, true};
    case kCFStringEncodingUTF16BE:
      return Encoder{EncodeBy<PutUtf16<false>>};
    case kCFStringEncodingUTF16LE:
      return Encoder{EncodeBy<PutUtf16<true>>};
    case kCFStringEncodingUTF32:
      return Encoder{EncodeBy<PutUtf32<kIsLittleEndian>>, true};
    case kCFStringEncodingUTF32BE:
      return Encoder{EncodeBy<PutUtf32<false>>};
    case kCFStringEncodingUTF32LE:
      return Encoder{EncodeBy<PutUtf32<true>>};
    default:
      return {};
  }
}

bool DecodeUtf8(UInt8 const* bytes, std::size_t length, Form form, std::vector<UniChar>& text) {
  constexpr UInt8 kMark[] = {0xEF, 0xBB, 0xBF};
  std::size_t at = 0;
  if (form == Form::kExternal && length >= 3 && std::memcmp(bytes, kMark, 3) == 0) at = 3;
  while (at < length) {
    UInt32 character;
    std::size_t const size = TakeUtf8(bytes + at, length - at, character);
    if (size == 0) return false;
    Append(text, character);
    at += size;
  }
  return true;
}

// UTF-16 and UTF-32. Where the encoding leaves the order open, a mark decides it, and without one
// an external form is big-endian.
bool DecodeWide(UInt8 const* bytes, std::size_t length, int width, std::optional<bool> order,
                Form form, std::vector<UniChar>& text) {
  auto const step = static_cast<std::size_t>(width);
  if (length % step != 0) return false;
  bool is_little = order.value_or(form == Form::kInternal && kIsLittleEndian);
  std::size_t at = 0;
  if (form == Form::kExternal && length > 0) {
    for (bool little : {false, true}) {
      if (order.value_or(little) == little && GetCode(bytes, width, little) == kByteOrderMark) {
        is_little = little;
        at = step;
      }
    }
  }
  for (; at < length; at += step) {
    UInt32 const code = GetCode(bytes + at, width, is_little);
    if (width == 4 && (code > 0x10FFFF || IsSurrogate(code))) return false;
    Append(text, code);
  }
  return true;
}

bool DecodeByTable(UInt8 const* bytes, std::size_t length, UpperHalf const& table,
                   std::vector<UniChar>& text) {
  for (std::size_t i = 0; i < length; ++i) {
    text.push_back(bytes[i] < 0x80 ? bytes[i] : table[bytes[i] - 0x80]);
  }
  return true;
}

}  // namespace

std::size_t TakeUtf8(UInt8 const* bytes, std::size_t length, UInt32& character) {
  UInt8 const first = bytes[0];
  if (first < 0x80) {
    character = first;
    return 1;
  }
  if (first < 0xC2 || first > 0xF4) return 0;
  std::size_t const size = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  if (size > length) return 0;
  character = first & (0x7Fu >> size);
  for (std::size_t i = 1; i < size; ++i) {
    if ((bytes[i] & 0xC0) != 0x80) return 0;
    character = character << 6 | (bytes[i] & 0x3F);
  }
  constexpr UInt32 kLowest[] = {0, 0, 0x80, 0x800, 0x10000};
  bool const is_valid =
      character >= kLowest[size] && character <= 0x10FFFF && !IsSurrogate(character);
  return is_valid ? size : 0;
}

bool IsAscii(UInt8 const* bytes, std::size_t length) {
  std::size_t at = 0;
  // Without a way out in between, so that the compiler takes the words of a line together.
  for (constexpr std::size_t kLine = 64; at + kLine <= length; at += kLine) {
    std::uint64_t all = 0;
    for (std::size_t i = 0; i < kLine; i += 8) {
      std::uint64_t word;
      std::memcpy(&word, bytes + at + i, 8);
      all |= word;
    }
    if ((all & 0x8080808080808080u) != 0) return false;
  }
  for (; at + 8 <= length; at += 8) {
    std::uint64_t word;
    std::memcpy(&word, bytes + at, 8);
    if ((word & 0x8080808080808080u) != 0) return false;
  }
  for (; at < length; ++at) {
    if (bytes[at] >= 0x80) return false;
  }
  return true;
}

bool ExtendsAscii(CFStringEncoding encoding) {
  return encoding == kCFStringEncodingUTF8 || encoding == kCFStringEncodingASCII ||
         encoding == kCFStringEncodingISOLatin1 || encoding == kCFStringEncodingMacRoman ||
         encoding == kCFStringEncodingWindowsLatin1;
}

bool Encode(UniChar const* text, std::size_t length, CFStringEncoding encoding, UInt8 loss_byte,
            Form form, UInt8* buffer, std::size_t capacity, Conversion& conversion) {
  if (auto const encoder = FindEncoder(encoding)) {
    bool const has_mark = form == Form::kExternal && encoder->takes_mark;
    conversion = encoder->encode(text, length, loss_byte, has_mark, buffer, capacity);
    return true;
  }
  conversion = {};
  unicode::Service* const service = unicode::LoadService();
  return service != nullptr &&
         service->Encode(encoding, text, length, loss_byte, buffer, capacity, conversion);
}

bool Decode(UInt8 const* bytes, std::size_t length, CFStringEncoding encoding, Form form,
            std::vector<UniChar>& text) {
  text.reserve(length);
  switch (encoding) {
    case kCFStringEncodingASCII:
      if (!IsAscii(bytes, length)) return false;
      [[fallthrough]];
    case kCFStringEncodingISOLatin1:
      text.assign(bytes, bytes + length);
      return true;
    case kCFStringEncodingMacRoman:
      return DecodeByTable(bytes, length, kMacRoman, text);
    case kCFStringEncodingWindowsLatin1:
      return DecodeByTable(bytes, length, kWindowsLatin1, text);
    case kCFStringEncodingUTF8:
      return DecodeUtf8(bytes, length, form, text);
    case kCFStringEncodingUTF16:
      return DecodeWide(bytes, length, 2, {}, form, text);
    case kCFStringEncodingUTF16BE:
      return DecodeWide(bytes, length, 2, false, form, text);
    case kCFStringEncodingUTF16LE:
      return DecodeWide(bytes, length, 2, true, form, text);
    case kCFStringEncodingUTF32:
      return DecodeWide(bytes, length, 4, {}, form, text);
    case kCFStringEncodingUTF32BE:
      return DecodeWide(bytes, length, 4, false, form, text);
    case kCFStringEncodingUTF32LE:
      return DecodeWide(bytes, length, 4, true, form, text);
    default:
      break;
  }
  unicode::Service* const service = unicode::LoadService();
  return service != nullptr && service->Decode(encoding, bytes, length, text);
}

}  // namespace encodings
