#include "portable/stringy.h"

#include <algorithm>
#include <cassert>
#include <cctype>
#include <cstring>
#include <limits>
#include <memory>

#include "portable/ascii.h"

namespace {

// With the NUL.
std::uint32_t SizeFor(unsigned long length) {
  if (length >= std::numeric_limits<std::uint32_t>::max()) throw StringyLengthTooLong();
  return static_cast<std::uint32_t>(length) + 1;
}

// A text in storage of its own size; the caller owns it.
char* NewArray(std::uint32_t size) {
  return std::make_unique_for_overwrite<char[]>(size).release();
}

void DeleteArray(char* array) { std::unique_ptr<char[]>{array}.reset(); }

bool IsEmptyText(char const* text) { return text == nullptr || *text == '\0'; }

bool IsWhite(char byte) { return Ascii::WhiteSpace().Contains(static_cast<unsigned char>(byte)); }

}  // namespace

Stringy::Stringy(char const* from) {
  if (from == nullptr) return;
  unsigned long const length = std::strlen(from);
  if (length != 0) {
    Become(from, length);
  } else {
    inline_[0] = '\0';
    TakeOver(inline_, 1);
  }
}

Stringy::Stringy(unsigned char const* bytes, unsigned long length)
    : Stringy(reinterpret_cast<char const*>(bytes), length) {}

Stringy::Stringy(char const* bytes, unsigned long length) { Become(bytes, length); }

Stringy::Stringy(Stringy const& other) { *this = other; }

Stringy::Stringy(Stringy&& other) noexcept { TakeOver(other); }

Stringy& Stringy::operator=(Stringy const& other) {
  if (this == &other) return *this;
  if (other.size == 1) return *this = Stringy("");
  Become(other.text, other.Length());
  return *this;
}

Stringy& Stringy::operator=(Stringy&& other) noexcept {
  if (this == &other) return *this;
  BecomeNull();
  TakeOver(other);
  return *this;
}

Stringy::~Stringy() { BecomeNull(); }

char Stringy::operator[](unsigned long index) const {
  assert(index < size);
  return text[index];
}

Stringy& Stringy::operator+=(Stringy const& addition) {
  Append(addition.text, addition.Length());
  return *this;
}

Stringy& Stringy::operator+=(char const* addition) { return *this += ConstData(addition); }

Stringy& Stringy::operator+=(ConstData const& addition) {
  Append(reinterpret_cast<char const*>(addition.begin), addition.Length());
  return *this;
}

Stringy& Stringy::operator+=(char addition) {
  if (addition != '\0') Append(&addition, 1);
  return *this;
}

int Stringy::Compare(char const* other) const {
  bool const other_is_empty = IsEmptyText(other);
  if (IsEmpty() || other_is_empty) return other_is_empty - IsEmpty();
  return std::strcmp(text, other);
}

int Stringy::Compare(Stringy const& other) const {
  // By the size: a text that begins with a NUL is not empty.
  if (IsEmpty() || other.IsEmpty()) return other.IsEmpty() - IsEmpty();
  return std::strcmp(text, other.text);
}

int Stringy::CompareNoCase(char const* other) const { return CompareIgnoreCase(text, other); }

bool Stringy::EqualIgnoringCase(Stringy const& other) const {
  return Ascii::EqualIgnoringCase(*this, other);
}

bool Stringy::Contains(char const* pattern) const {
  if (IsEmptyText(pattern)) return true;
  return text != nullptr && std::strstr(text, pattern) != nullptr;
}

bool Stringy::StartsWith(char const* pattern) const {
  return ConstData(*this).StartsWith(ConstData(pattern));
}

bool Stringy::StartsWithIgnoringCase(Stringy const& pattern) const {
  return pattern.Length() <= Length() &&
         Ascii::EqualIgnoringCase(ConstData(text, pattern.Length()), pattern);
}

bool Stringy::StartsWithIgnoringCase(char const* pattern) const {
  ConstData const bytes(pattern);
  return bytes.Length() <= Length() &&
         Ascii::EqualIgnoringCase(ConstData(text, bytes.Length()), bytes);
}

long Stringy::Find(char byte) const {
  return ConstData(*this).PositionOf(static_cast<unsigned char>(byte));
}

long Stringy::FindFromRight(char byte) const {
  auto index = static_cast<long>(Length());
  while (--index >= 0 && text[index] != byte) {
  }
  return index;
}

void Stringy::Replace(char from, char to) { std::replace(text, text + Length(), from, to); }

void Stringy::MakeLower() {
  std::transform(text, text + Length(), text,
                 [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
}

void Stringy::MakeUpper() {
  std::transform(text, text + Length(), text,
                 [](unsigned char byte) { return static_cast<char>(std::toupper(byte)); });
}

Stringy Stringy::Mid(long start, long count) const {
  auto const length = static_cast<long>(Length());
  long const from = std::clamp(start, 0L, length);
  return Stringy(text + from, static_cast<unsigned long>(std::clamp(count, 0L, length - from)));
}

Stringy Stringy::Mid(long start) const { return Mid(start, static_cast<long>(Length())); }

Stringy Stringy::Left(long count) const { return Mid(0, count); }

Stringy Stringy::Right(long count) const {
  auto const length = static_cast<long>(Length());
  return Mid(length - std::clamp(count, 0L, length));
}

void Stringy::TrimLeft() {
  char* const end = text + Length();
  char* const start = std::find_if_not(text, end, IsWhite);
  Become(start, static_cast<unsigned long>(end - start));
}

void Stringy::StripLeadingAndTrailingWhite() {
  ConstData const kept = TrimAsciiWhitespace(*this);
  Become(reinterpret_cast<char const*>(kept.begin), kept.Length());
}

Stringy Stringy::SubstringAfterLastSeparator(char separator) const {
  long const position = FindFromRight(separator);
  if (position == -1) return Stringy();
  return Stringy(TrimAsciiWhitespace(ConstData(text + position + 1, text + Length())));
}

unsigned long Stringy::SplitSeparatedStringsIntoArray(char const* text, char separator,
                                                      std::vector<Stringy>& out,
                                                      unsigned long max_count, bool strip) {
  if (max_count == 0 || IsEmptyText(text)) return 0;
  unsigned long count = 0;
  char const* start = text;
  for (char const* next = text;; ++next) {
    if (*next != separator && *next != '\0') continue;
    ConstData const piece(start, next);
    out.emplace_back(strip ? TrimAsciiWhitespace(piece) : piece);
    bool const is_at_end = *next == '\0' && separator != '\0';
    if (++count == max_count || is_at_end) return count;
    start = next + 1;
  }
}

// The bytes may be some of this very string.
void Stringy::Become(char const* bytes, unsigned long length) {
  if (length == 0) return BecomeNull();
  std::uint32_t const new_size = SizeFor(length);
  char* const storage = new_size > sizeof inline_ ? NewArray(new_size) : inline_;
  std::memmove(storage, bytes, length);
  storage[length] = '\0';
  TakeOver(storage, new_size);
}

void Stringy::BecomeNull() { TakeOver(nullptr, 0); }

void Stringy::Append(char const* bytes, unsigned long length) {
  if (length == 0) return;
  unsigned long const old_length = Length();
  if (length > std::numeric_limits<std::uint32_t>::max()) throw StringyLengthTooLong();
  std::uint32_t const new_size = SizeFor(old_length + length);
  char* const storage = new_size > sizeof inline_ ? NewArray(new_size) : inline_;
  if (old_length != 0 && storage != text) std::memcpy(storage, text, old_length);
  std::memmove(storage + old_length, bytes, length);
  storage[new_size - 1] = '\0';
  TakeOver(storage, new_size);
}

void Stringy::TakeOver(Stringy& other) {
  if (other.IsOnHeap()) {
    TakeOver(other.text, other.size);
  } else if (other.text != nullptr) {
    std::memcpy(inline_, other.inline_, other.size);
    TakeOver(inline_, other.size);
  }
  other.text = nullptr;
  other.size = 0;
}

void Stringy::TakeOver(char* storage, std::uint32_t new_size) {
  if (IsOnHeap()) DeleteArray(text);
  text = storage;
  size = new_size;
}

int CompareIgnoreCase(char const* left, char const* right) {
  if (left == nullptr || right == nullptr) return (left != nullptr) - (right != nullptr);
  return Ascii::CompareUppercase(left, right);
}

int CompareIgnoreCaseN(char const* left, char const* right, unsigned long count) {
  if (left == nullptr || right == nullptr) return CompareIgnoreCase(left, right);
  return Ascii::CompareUppercase(ConstData(left, strnlen(left, count)),
                                 ConstData(right, strnlen(right, count)));
}
