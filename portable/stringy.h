// A string of bytes that keeps texts up to 127 bytes within itself.
#pragma once

#include <compare>
#include <cstdint>
#include <vector>

#include "evaluator/plugin/export.h"
#include "portable/const_data.h"
#include "portable/integer_type.h"
#include "portable/numeral.h"

// The text ends in NUL. The null string has none; it and the text of no bytes are both empty.
// There is no spare capacity: each append to a text that is not kept inside allocates anew.
//
// White space here is TAB, LF, CR and blank. Pointers to text may be null where a comparison or
// search takes them.
class GATOTU_API Stringy {
 public:
  Stringy() = default;
  explicit(false) Stringy(char const* from);
  // No bytes give the null string.
  Stringy(unsigned char const* bytes, unsigned long length);
  Stringy(char const* bytes, unsigned long length);
  explicit Stringy(ConstData const& data) : Stringy(data.begin, data.Length()) {}
  // Decimal.
  template <IntegerType T>
  explicit Stringy(T value) : Stringy(ConstData(Numeral(value, 10))) {}

  Stringy(Stringy const& other);
  Stringy(Stringy&& other) noexcept;
  Stringy& operator=(Stringy const& other);
  Stringy& operator=(Stringy&& other) noexcept;
  ~Stringy();

  // Null for the null string.
  char const* Text() const { return text; }
  unsigned long Length() const { return size == 0 ? 0 : size - 1; }
  bool IsEmpty() const { return size <= 1; }
  explicit(false) operator ConstData() const { return ConstData(text, Length()); }
  // Below the length, or the NUL at it.
  char operator[](unsigned long index) const;

  Stringy& operator+=(Stringy const& addition);
  Stringy& operator+=(char const* addition);
  Stringy& operator+=(ConstData const& addition);
  // A NUL is ignored.
  Stringy& operator+=(char addition);
  friend Stringy operator+(Stringy left, Stringy const& right) { return left += right; }

  // Up to the first NUL; empty strings come first and are equal.
  int Compare(char const* other) const;
  int Compare(Stringy const& other) const;
  // In upper case; the null string comes before the empty one.
  int CompareNoCase(char const* other) const;
  int CompareNoCase(Stringy const& other) const { return CompareNoCase(other.text); }
  bool EqualIgnoringCase(Stringy const& other) const;

  friend bool operator==(Stringy const& left, Stringy const& right) {
    return left.Compare(right) == 0;
  }
  friend bool operator==(Stringy const& left, char const* right) {
    return left.Compare(right) == 0;
  }
  friend std::weak_ordering operator<=>(Stringy const& left, Stringy const& right) {
    return left.Compare(right) <=> 0;
  }
  friend std::weak_ordering operator<=>(Stringy const& left, char const* right) {
    return left.Compare(right) <=> 0;
  }

  bool Contains(char const* pattern) const;
  // True for a null or empty pattern.
  bool StartsWith(char const* pattern) const;
  bool StartsWithIgnoringCase(Stringy const& pattern) const;
  bool StartsWithIgnoringCase(char const* pattern) const;
  // The index, or -1.
  long Find(char byte) const;
  long FindFromRight(char byte) const;

  void Replace(char from, char to);
  // By the locale of the C library.
  void MakeLower();
  void MakeUpper();

  // Negative positions and counts are taken as 0, too large ones as what there is.
  Stringy Mid(long start, long count) const;
  Stringy Mid(long start) const;
  Stringy Left(long count) const;
  Stringy Right(long count) const;

  // What is white throughout becomes the null string.
  void TrimLeft();
  void StripLeadingAndTrailingWhite();
  // Stripped; the null string if there is no separator.
  Stringy SubstringAfterLastSeparator(char separator) const;

  // Appends the pieces between separators, empty ones too, and returns how many these are, at most
  // `max_count`; `strip` strips each. Nothing is appended for a null or empty text. With NUL for a
  // separator, `text` is a run of texts, at least `max_count` of them.
  static unsigned long SplitSeparatedStringsIntoArray(char const* text, char separator,
                                                      std::vector<Stringy>& out,
                                                      unsigned long max_count, bool strip);

 private:
  bool IsOnHeap() const { return size > sizeof inline_; }
  void Become(char const* bytes, unsigned long length);
  void BecomeNull();
  void Append(char const* bytes, unsigned long length);
  void TakeOver(Stringy& other);
  void TakeOver(char* storage, std::uint32_t new_size);

  char* text = nullptr;
  std::uint32_t size = 0;  // with the NUL; 0 for the null string
  char inline_[128];
};

// In upper case, like `Stringy::CompareNoCase`; the second form looks at so many bytes at most.
GATOTU_API int CompareIgnoreCase(char const* left, char const* right);
GATOTU_API int CompareIgnoreCaseN(char const* left, char const* right, unsigned long count);
