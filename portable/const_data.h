// Byte ranges that own nothing: two pointers, copied as such. Characters are unsigned bytes; no
// locale is consulted.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "evaluator/plugin/export.h"
#include "portable/const_c_string.h"
#include "portable/exceptions.h"

class Data;

// A range to read. Both pointers null is a valid empty range.
class GATOTU_API ConstData {
 public:
  constexpr ConstData() = default;
  constexpr ConstData(unsigned char const* start, unsigned char const* stop)
      : begin(start), end(stop) {}
  constexpr ConstData(unsigned char const* start, unsigned long length)
      : begin(start), end(start + length) {}
  ConstData(char const* start, char const* stop)
      : ConstData(start, static_cast<unsigned long>(stop - start)) {}
  ConstData(char const* start, unsigned long length)
      : ConstData(reinterpret_cast<unsigned char const*>(start), length) {}
  // Up to the NUL; null gives the null range.
  ConstData(char const* text)  // NOLINT(google-explicit-constructor)
      : ConstData(text, text != nullptr ? std::strlen(text) : 0) {}
  explicit ConstData(ConstCString text) : ConstData(text.Text()) {}
  // The string outlives the range.
  explicit ConstData(std::string const& text) : ConstData(text.data(), text.size()) {}

  unsigned long Length() const { return static_cast<unsigned long>(end - begin); }
  bool IsEmpty() const { return begin == end; }
  unsigned char operator[](unsigned long index) const { return begin[index]; }

  bool Contains(unsigned char byte) const { return PositionOf(byte) != -1; }
  bool Contains(ConstData pattern) const { return PositionOf(pattern) != -1; }
  // The offset of the first occurrence, or -1; an empty pattern occurs nowhere.
  long PositionOf(unsigned char byte) const;
  long PositionOf(ConstData pattern) const;
  // The offsets of all occurrences from left to right, none overlapping the one before.
  std::vector<unsigned long> PositionsOf(ConstData pattern) const;

  bool StartsWith(ConstData pattern) const;
  bool EndsWith(ConstData pattern) const;

  // The pieces between the separators, each trimmed of ASCII white space when `trim` is set, and
  // without the empty ones unless `keep_empty` is. An empty separator, or one longer than the
  // range, gives the whole as one piece, even an empty one.
  std::vector<ConstData> Split(ConstData separator, bool trim, bool keep_empty) const;

  // Copies what fits to the start of the destination and returns the rest.
  ConstData operator>>(Data destination) const;

  unsigned char const* begin = nullptr;
  unsigned char const* end = nullptr;
};

// A range to write.
class GATOTU_API Data {
 public:
  constexpr Data() = default;
  constexpr Data(unsigned char* start, unsigned char* stop) : begin(start), end(stop) {}
  constexpr Data(unsigned char* start, unsigned long length) : begin(start), end(start + length) {}

  operator ConstData() const { return {begin, end}; }  // NOLINT(google-explicit-constructor)
  unsigned long Length() const { return static_cast<unsigned long>(end - begin); }
  bool IsEmpty() const { return begin == end; }

  // `DataOverflow` at or past the end.
  unsigned char& operator[](unsigned long index) const {
    if (index >= Length()) throw DataOverflow();
    return begin[index];
  }

  unsigned char* begin = nullptr;
  unsigned char* end = nullptr;
};

// Copies what fits, overlapping or not, and returns the rest of the destination.
GATOTU_API Data operator<<(Data destination, ConstData source);

GATOTU_API bool operator==(ConstData a, ConstData b);
GATOTU_API bool operator<(ConstData a, ConstData b);
inline bool operator!=(ConstData a, ConstData b) { return !(a == b); }

// Negative, 0 or positive: the first byte that differs decides, else the shorter is smaller.
GATOTU_API int Compare(ConstData a, ConstData b);
// The same from the last byte backwards.
GATOTU_API int CompareReversed(ConstData a, ConstData b);
GATOTU_API int Compare(ConstCString a, ConstData b);
GATOTU_API int Compare(ConstCString a, ConstCString b);

// Without the bytes of `Ascii::WhiteSpace` at both ends.
GATOTU_API ConstData TrimAsciiWhitespace(ConstData data);

inline std::string MakeString(ConstData data) {
  if (data.IsEmpty()) return {};
  return std::string(reinterpret_cast<char const*>(data.begin), data.Length());
}
