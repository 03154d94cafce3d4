#include "portable/ascii.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace Ascii {
namespace {

constexpr ByteSet kLetters = ByteSet().AddRange('A', 'Z').AddRange('a', 'z');
constexpr ByteSet kWhiteSpace = ByteSet().AddRange(0x09, 0x0a).Add(0x0d).Add(0x20);
constexpr ByteSet kLinearWhiteSpace = ByteSet().Add(0x09).Add(0x20);
constexpr ByteSet kPrintable = ByteSet().AddRange(0x21, 0x7e);
constexpr ByteSet kPlainText = ByteSet().AddRange(0x20, 0x7e);
constexpr ByteSet kUnprintable = ByteSet().AddRange(0x00, 0x20).AddRange(0x7f, 0xff);
constexpr ByteSet kControl = ByteSet().AddRange(0x00, 0x1f).Add(0x7f);
constexpr ByteSet kHigh = ByteSet().AddRange(0x80, 0xff);
constexpr ByteSet kLow = ByteSet().AddRange(0x00, 0x7f);
constexpr ByteSet kLettersAndUnderscore = ByteSet(kLetters).Add('_');
constexpr ByteSet kNumeric = ByteSet().AddRange('0', '9');
constexpr ByteSet kAlphanumeric = ByteSet(kLetters).AddRange('0', '9');
constexpr ByteSet kAlphanumericAndUnderscore = ByteSet(kAlphanumeric).Add('_');
constexpr ByteSet kHexDigits = ByteSet().AddRange('0', '9').AddRange('A', 'F').AddRange('a', 'f');
constexpr ByteSet kPunctuation = ByteSet()
                                     .AddRange(0x21, '0' - 1)
                                     .AddRange('9' + 1, 'A' - 1)
                                     .AddRange('Z' + 1, 'a' - 1)
                                     .AddRange('z' + 1, 0x7e);
constexpr ByteSet kUppercaseAlphabet = ByteSet().AddRange('A', 'Z');
constexpr ByteSet kLowercaseAlphabet = ByteSet().AddRange('a', 'z');

constexpr unsigned char Raised(int byte) {
  return static_cast<unsigned char>(byte >= 'a' && byte <= 'z' ? byte - 'a' + 'A' : byte);
}
constexpr unsigned char Lowered(int byte) {
  return static_cast<unsigned char>(byte >= 'A' && byte <= 'Z' ? byte - 'A' + 'a' : byte);
}

constexpr ByteTable MakeTable(unsigned char (*map)(int)) {
  ByteTable table{};
  for (int byte = 0; byte < 256; ++byte) table[static_cast<unsigned>(byte)] = map(byte);
  return table;
}

int CompareThrough(ByteTable const& table, ConstData a, ConstData b) {
  unsigned long common = std::min(a.Length(), b.Length());
  for (unsigned long i = 0; i < common; ++i) {
    if (int difference = int{table[a[i]]} - int{table[b[i]]}) return difference;
  }
  return (a.Length() > b.Length()) - (a.Length() < b.Length());
}

bool IsUnchangedBy(ByteTable const& table, ConstData data) {
  return std::all_of(data.begin, data.end, [&](unsigned char c) { return table[c] == c; });
}

std::string Mapped(ByteTable const& table, ConstData data) {
  std::string text(data.Length(), '\0');
  std::transform(data.begin, data.end, text.begin(),
                 [&](unsigned char c) { return static_cast<char>(table[c]); });
  return text;
}

void MapInto(ByteTable const& table, ConstBuffer& source, Buffer& destination) {
  while (!source.IsEmpty() && !destination.IsEmpty()) destination.Put(table[source.Get()]);
}

void MapInto(ByteTable const& table, ConstData source, Data destination) {
  ConstBuffer input(source);
  Buffer output(destination);
  MapInto(table, input, output);
}

// Made on first use and never destroyed, in storage that needs no guard at the end.
template <class Filter>
Filter& Shared() {
  alignas(Filter) static unsigned char storage[sizeof(Filter)];
  static Filter& filter = *new (storage) Filter;
  return filter;
}

}  // namespace

constinit ByteTable const uppercase = MakeTable(Raised);
constinit ByteTable const lowercase = MakeTable(Lowered);

ByteSet const& WhiteSpace() { return kWhiteSpace; }
ByteSet const& LinearWhiteSpace() { return kLinearWhiteSpace; }
ByteSet const& Printable() { return kPrintable; }
ByteSet const& PlainText() { return kPlainText; }
ByteSet const& Unprintable() { return kUnprintable; }
ByteSet const& Control() { return kControl; }
ByteSet const& High() { return kHigh; }
ByteSet const& Low() { return kLow; }
ByteSet const& Alphabetic() { return kLetters; }
ByteSet const& Alphabetic_() { return kLettersAndUnderscore; }
ByteSet const& Numeric() { return kNumeric; }
ByteSet const& Alphanumeric() { return kAlphanumeric; }
ByteSet const& Alphanumeric_() { return kAlphanumericAndUnderscore; }
ByteSet const& HexDigits() { return kHexDigits; }
ByteSet const& Punctuation() { return kPunctuation; }
ByteSet const& UppercaseAlphabet() { return kUppercaseAlphabet; }
ByteSet const& LowercaseAlphabet() { return kLowercaseAlphabet; }

bool CaseTablesAreCorrect() {
  for (int byte = 0; byte < 256; ++byte) {
    auto index = static_cast<unsigned>(byte);
    if (uppercase[index] != Raised(byte) || lowercase[index] != Lowered(byte)) return false;
  }
  return true;
}

unsigned char HexDigit(unsigned value) {
  return static_cast<unsigned char>(value < 10 ? '0' + value : 'a' + value - 10);
}

unsigned HexDigitValue(unsigned char digit) {
  return digit <= '9' ? digit - unsigned{'0'} : (digit | 0x20u) - 'a' + 10;
}

bool EqualIgnoringCase(ConstData a, ConstData b) {
  return a.Length() == b.Length() && CompareLowercase(a, b) == 0;
}

int CompareLowercase(ConstData a, ConstData b) { return CompareThrough(lowercase, a, b); }
int CompareUppercase(ConstData a, ConstData b) { return CompareThrough(uppercase, a, b); }
int CompareLowercase(char const* a, char const* b) {
  return CompareLowercase(ConstData(a), ConstData(b));
}
int CompareUppercase(char const* a, char const* b) {
  return CompareUppercase(ConstData(a), ConstData(b));
}

bool IsLowercase(ConstData data) { return IsUnchangedBy(lowercase, data); }
bool IsUppercase(ConstData data) { return IsUnchangedBy(uppercase, data); }

std::string RaiseCase(ConstData data) { return Mapped(uppercase, data); }
std::string LowerCase(ConstData data) { return Mapped(lowercase, data); }

void RaiseCase(ConstData source, Data destination) { MapInto(uppercase, source, destination); }
void LowerCase(ConstData source, Data destination) { MapInto(lowercase, source, destination); }
void RaiseCase(ConstBuffer& source, Buffer& destination) {
  MapInto(uppercase, source, destination);
}
void LowerCase(ConstBuffer& source, Buffer& destination) {
  MapInto(lowercase, source, destination);
}

void CaseRaisingFilter::operator()(ConstBuffer& input, Buffer& output) { RaiseCase(input, output); }
void CaseLoweringFilter::operator()(ConstBuffer& input, Buffer& output) {
  LowerCase(input, output);
}

CaseRaisingFilter& RaiseCase() { return Shared<CaseRaisingFilter>(); }
CaseLoweringFilter& LowerCase() { return Shared<CaseLoweringFilter>(); }

}  // namespace Ascii
