#include "portable/const_data.h"

#include <algorithm>

#include "portable/ascii.h"

namespace {

int SignOf(long difference) { return (difference > 0) - (difference < 0); }

bool AreEqualBytes(unsigned char const* a, unsigned char const* b, unsigned long length) {
  return length == 0 || std::memcmp(a, b, length) == 0;
}

int CompareLengths(ConstData a, ConstData b) {
  return SignOf(static_cast<long>(a.Length()) - static_cast<long>(b.Length()));
}

}  // namespace

long ConstData::PositionOf(unsigned char byte) const {
  if (IsEmpty()) return -1;
  auto const* found = static_cast<unsigned char const*>(std::memchr(begin, byte, Length()));
  return found != nullptr ? found - begin : -1;
}

long ConstData::PositionOf(ConstData pattern) const {
  if (pattern.IsEmpty() || pattern.Length() > Length()) return -1;
  void const* found = memmem(begin, Length(), pattern.begin, pattern.Length());
  return found != nullptr ? static_cast<unsigned char const*>(found) - begin : -1;
}

std::vector<unsigned long> ConstData::PositionsOf(ConstData pattern) const {
  std::vector<unsigned long> positions;
  unsigned long start = 0;
  for (long hit; (hit = ConstData(begin + start, end).PositionOf(pattern)) != -1;) {
    positions.push_back(start + static_cast<unsigned long>(hit));
    start = positions.back() + pattern.Length();
  }
  return positions;
}

bool ConstData::StartsWith(ConstData pattern) const {
  return pattern.Length() <= Length() && AreEqualBytes(begin, pattern.begin, pattern.Length());
}

bool ConstData::EndsWith(ConstData pattern) const {
  return pattern.Length() <= Length() &&
         AreEqualBytes(end - pattern.Length(), pattern.begin, pattern.Length());
}

std::vector<ConstData> ConstData::Split(ConstData separator, bool trim, bool keep_empty) const {
  auto trimmed = [trim](ConstData piece) { return trim ? TrimAsciiWhitespace(piece) : piece; };
  if (separator.IsEmpty() || separator.Length() > Length()) return {trimmed(*this)};
  std::vector<ConstData> pieces;
  auto append = [&](ConstData piece) {
    if (keep_empty || !piece.IsEmpty()) pieces.push_back(piece);
  };
  unsigned char const* start = begin;
  for (unsigned long position : PositionsOf(separator)) {
    append(trimmed({start, begin + position}));
    start = begin + position + separator.Length();
  }
  append(trimmed({start, end}));
  return pieces;
}

ConstData ConstData::operator>>(Data destination) const {
  unsigned long count = std::min(Length(), destination.Length());
  if (count > 0) std::memmove(destination.begin, begin, count);
  return {begin + count, end};
}

Data operator<<(Data destination, ConstData source) {
  source >> destination;
  return {destination.begin + std::min(source.Length(), destination.Length()), destination.end};
}

bool operator==(ConstData a, ConstData b) {
  return a.Length() == b.Length() && AreEqualBytes(a.begin, b.begin, a.Length());
}

bool operator<(ConstData a, ConstData b) { return Compare(a, b) < 0; }

int Compare(ConstData a, ConstData b) {
  unsigned long common = std::min(a.Length(), b.Length());
  int order = common > 0 ? std::memcmp(a.begin, b.begin, common) : 0;
  return order != 0 ? SignOf(order) : CompareLengths(a, b);
}

int CompareReversed(ConstData a, ConstData b) {
  unsigned long common = std::min(a.Length(), b.Length());
  for (unsigned long i = 1; i <= common; ++i) {
    if (int difference = int{*(a.end - i)} - int{*(b.end - i)}) return SignOf(difference);
  }
  return CompareLengths(a, b);
}

int Compare(ConstCString a, ConstData b) { return Compare(ConstData(a), b); }
int Compare(ConstCString a, ConstCString b) { return Compare(ConstData(a), ConstData(b)); }

ConstData TrimAsciiWhitespace(ConstData data) {
  ByteSet const& white = Ascii::WhiteSpace();
  while (!data.IsEmpty() && white.Contains(*data.begin)) ++data.begin;
  while (!data.IsEmpty() && white.Contains(*(data.end - 1))) --data.end;
  return data;
}
