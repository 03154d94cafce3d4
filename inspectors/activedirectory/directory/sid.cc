#include "inspectors/activedirectory/directory/sid.h"

#include <algorithm>
#include <cstdint>

#include "portable/make_numeral.h"

namespace {

constexpr unsigned long kHeaderSize = 8;
constexpr unsigned long kPrefixLength = 4;  // of "S-1-"
constexpr unsigned long kMostSubAuthorities = 255;

// 0 for bytes that hold no whole SID.
unsigned long SizeOf(ConstData sid) {
  if (sid.Length() < kHeaderSize) return 0;
  unsigned long const size = kHeaderSize + 4ul * sid[1];
  return size <= sid.Length() ? size : 0;
}

std::uint32_t BigEndian(unsigned char const* bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
         std::uint32_t{bytes[2]} << 8 | bytes[3];
}

std::uint32_t LittleEndian(unsigned char const* bytes) {
  return std::uint32_t{bytes[3]} << 24 | std::uint32_t{bytes[2]} << 16 |
         std::uint32_t{bytes[1]} << 8 | bytes[0];
}

void AppendByte(std::string& sid, std::uint32_t byte) { sid += static_cast<char>(byte); }

void AppendBigEndian(std::string& sid, std::uint32_t number) {
  for (int const shift : {24, 16, 8, 0}) AppendByte(sid, number >> shift);
}

void AppendLittleEndian(std::string& sid, std::uint32_t number) {
  for (int const shift : {0, 8, 16, 24}) AppendByte(sid, number >> shift);
}

// The sub-authorities that the dashes announce, the two of the prefix left out where there are
// that many.
unsigned long AnnouncedCount(ConstData text) {
  auto const dashes = static_cast<unsigned long>(std::count(text.begin, text.end, '-'));
  return dashes >= 3 ? dashes - 2 : dashes;
}

// The piece up to the next dash, which goes from the text along with it.
ConstData TakePiece(ConstData& text) {
  unsigned char const* const dash = std::find(text.begin, text.end, '-');
  ConstData const piece(text.begin, dash);
  text.begin = dash == text.end ? dash : dash + 1;
  return piece;
}

// Whatever the bytes are, modulo 2^32.
std::uint32_t NumberFrom(ConstData piece) {
  std::uint32_t number = 0;
  for (unsigned char const* at = piece.begin; at != piece.end; ++at)
    number = number * 10 + *at - '0';
  return number;
}

}  // namespace

std::string XQConvertSidToStringSid(ConstData sid) {
  unsigned long const size = SizeOf(sid);
  if (size == 0) return {};
  std::string text = "S-";
  AppendByte(text, std::uint32_t{'0'} + sid[0]);
  text += '-';
  text += MakeAsciiDecimalNumeral(BigEndian(sid.begin + 4), 1).Text();
  for (unsigned long at = kHeaderSize; at < size; at += 4) {
    std::uint32_t const sub_authority = LittleEndian(sid.begin + at);
    if (sub_authority == 0) continue;
    text += '-';
    text += MakeAsciiDecimalNumeral(sub_authority, 1).Text();
  }
  return text;
}

std::string XQConvertStringSidToSid(ConstData text) {
  unsigned long const count = AnnouncedCount(text);
  if (text.Length() < kPrefixLength || count == 0 || count > kMostSubAuthorities) return {};
  ConstData rest(text.begin + kPrefixLength, text.end);
  std::uint32_t const authority = NumberFrom(TakePiece(rest));
  if (rest.IsEmpty()) return {};

  std::string sid;
  sid.reserve(kHeaderSize + 4 * count);
  AppendByte(sid, std::uint32_t{text[2]} - '0');
  AppendByte(sid, static_cast<std::uint32_t>(count));
  sid.append(2, '\0');
  AppendBigEndian(sid, authority);
  std::uint32_t sub_authority = 0;
  for (unsigned long i = 0; i < count; ++i) {
    if (!rest.IsEmpty()) sub_authority = NumberFrom(TakePiece(rest));
    AppendLittleEndian(sid, sub_authority);
  }
  return sid;
}

bool XQEqualSid(ConstData a, ConstData b) {
  unsigned long const size = SizeOf(a);
  return size != 0 && size == SizeOf(b) && std::equal(a.begin, a.begin + size, b.begin);
}
