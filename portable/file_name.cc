#include "portable/file_name.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

#include "frameworks/CoreFoundation/file_system_text.h"
#include "portable/core_foundation/strings.h"
#include "portable/wildcard.h"

namespace MacintoshPlatform {
namespace {

using Units = std::span<UniChar const>;

std::vector<UniChar> UnitsOf(ConstData bytes) {
  return file_system_text::UnitsOf({reinterpret_cast<char const*>(bytes.begin), bytes.Length()});
}

Units UnitsOf(FileName const& name) { return {name.Units(), name.Count()}; }

UniChar Fold(UniChar unit) {
  return unit >= 'b' && unit <= 'z' ? static_cast<UniChar>(unit - 0x20) : unit;
}

bool AreEqual(Units a, Units b, bool ignore_case) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](UniChar one, UniChar other) {
    return one == other || (ignore_case && Fold(one) == Fold(other));
  });
}

bool BeginsWith(Units name, Units prefix, bool ignore_case) {
  return name.size() >= prefix.size() && AreEqual(name.first(prefix.size()), prefix, ignore_case);
}

bool EndsWith(Units name, Units suffix, bool ignore_case) {
  return name.size() >= suffix.size() && AreEqual(name.last(suffix.size()), suffix, ignore_case);
}

// How many units stand before the extension and its dot, -1 when the name does not end so.
long CountBeforeExtension(Units name, Units extension, bool ignore_case) {
  if (!EndsWith(name, extension, ignore_case)) return -1;
  std::size_t const before = name.size() - extension.size();
  bool const brings_dot = !extension.empty() && extension[0] == '.';
  if (brings_dot) return static_cast<long>(before);
  return before > 0 && name[before - 1] == '.' ? static_cast<long>(before - 1) : -1;
}

}  // namespace

FileName::FileName(HFSUniStr255 const& name) { Assign(name.unicode, name.length); }

FileName::FileName(ConstData bytes) {
  std::vector<UniChar> const units = UnitsOf(bytes);
  Assign(units.data(), units.size());
}

void FileName::Assign(UniChar const* units, unsigned long count) {
  if (count > kMaxCount) throw IllegalFileNameLength();
  std::copy_n(units, count, units_);
  count_ = static_cast<UInt16>(count);
}

void FileName::Set(CFStringRef name) {
  CFIndex const count = CFStringGetLength(name);
  if (count > static_cast<CFIndex>(kMaxCount)) throw IllegalFileNameLength();
  CFStringGetCharacters(name, CFRangeMake(0, count), units_);
  count_ = static_cast<UInt16>(count);
}

void FileName::Set(char const* text, CFStringEncoding encoding) {
  Set(::MakeCFString(text, encoding).Get());
}

HFSUniStr255 FileName::MakeHFSUniStr255() const {
  HFSUniStr255 name;
  name.length = count_;
  std::copy_n(units_, count_, name.unicode);
  return name;
}

AutoCFString FileName::MakeCFString() const { return ::MakeCFString(units_, count_); }

std::string FileName::MakeUTF8String() const { return file_system_text::BytesOf(units_, count_); }

FileName FileName::Part(unsigned long begin, unsigned long end) const {
  FileName part;
  part.Assign(units_ + begin, end - begin);
  return part;
}

FileName FileName::Concatenate(FileName const& rest) const {
  if (count_ + rest.count_ > static_cast<int>(kMaxCount)) throw IllegalFileNameLength();
  FileName whole = *this;
  std::copy_n(rest.units_, rest.count_, whole.units_ + count_);
  whole.count_ = static_cast<UInt16>(count_ + rest.count_);
  return whole;
}

bool FileName::HasPrefix(FileName const& prefix, bool ignore_case) const {
  return BeginsWith(UnitsOf(*this), UnitsOf(prefix), ignore_case);
}
bool FileName::HasPrefix(char const* prefix, bool ignore_case) const {
  return BeginsWith(UnitsOf(*this), UnitsOf(ConstData(prefix)), ignore_case);
}

bool FileName::HasSuffix(FileName const& suffix, bool ignore_case) const {
  return EndsWith(UnitsOf(*this), UnitsOf(suffix), ignore_case);
}
bool FileName::HasSuffix(char const* suffix, bool ignore_case) const {
  return EndsWith(UnitsOf(*this), UnitsOf(ConstData(suffix)), ignore_case);
}

bool FileName::HasExtension(FileName const& extension, bool ignore_case) const {
  return CountBeforeExtension(UnitsOf(*this), UnitsOf(extension), ignore_case) >= 0;
}
bool FileName::HasExtension(char const* extension, bool ignore_case) const {
  return CountBeforeExtension(UnitsOf(*this), UnitsOf(ConstData(extension)), ignore_case) >= 0;
}

FileName FileName::NameAfterPrefix(FileName const& prefix, bool ignore_case) const {
  if (!HasPrefix(prefix, ignore_case)) throw PrefixDoesNotMatch();
  return Part(prefix.count_, count_);
}
FileName FileName::NameAfterPrefix(char const* prefix, bool ignore_case) const {
  std::vector<UniChar> const units = UnitsOf(ConstData(prefix));
  if (!BeginsWith(UnitsOf(*this), units, ignore_case)) throw PrefixDoesNotMatch();
  return Part(units.size(), count_);
}

FileName FileName::NameBeforeExtension(FileName const& extension, bool ignore_case) const {
  long const end = CountBeforeExtension(UnitsOf(*this), UnitsOf(extension), ignore_case);
  if (end < 0) throw ExtensionDoesNotMatch();
  return Part(0, static_cast<unsigned long>(end));
}
FileName FileName::NameBeforeExtension(char const* extension, bool ignore_case) const {
  std::vector<UniChar> const units = UnitsOf(ConstData(extension));
  long const end = CountBeforeExtension(UnitsOf(*this), units, ignore_case);
  if (end < 0) throw ExtensionDoesNotMatch();
  return Part(0, static_cast<unsigned long>(end));
}

FileName FileName::BaseName() const {
  unsigned long end = count_;
  while (end > 0 && units_[end - 1] != '.') --end;
  return end == 0 ? *this : Part(0, end - 1);
}

FileName FileName::PrefixDigits() const {
  auto const is_digit = [](UniChar unit) { return unit >= '0' && unit <= '9'; };
  return Part(
      0, static_cast<unsigned long>(std::find_if_not(units_, units_ + count_, is_digit) - units_));
}

namespace {

struct KnownExtension {
  std::string_view extension;  // lower case
  FileName::Kind kind;
};

// Folders that the Finder shows as one item, by the names that the platform's own software gives.
constexpr KnownExtension kKnownExtensions[] = {
    {"app", FileName::Kind::kApplication},  {"bundle", FileName::Kind::kBundle},
    {"component", FileName::Kind::kBundle}, {"framework", FileName::Kind::kBundle},
    {"kext", FileName::Kind::kBundle},      {"mdimporter", FileName::Kind::kBundle},
    {"mpkg", FileName::Kind::kPackage},     {"osax", FileName::Kind::kBundle},
    {"pkg", FileName::Kind::kPackage},      {"plugin", FileName::Kind::kBundle},
    {"prefpane", FileName::Kind::kBundle},  {"qlgenerator", FileName::Kind::kBundle},
    {"rtfd", FileName::Kind::kPackage},     {"saver", FileName::Kind::kBundle},
    {"service", FileName::Kind::kBundle},   {"wdgt", FileName::Kind::kBundle},
};

}  // namespace

FileName::Kind FileName::ExtensionType() const {
  unsigned long begin = count_;
  while (begin > 0 && units_[begin - 1] != '.') --begin;
  if (begin == 0) return Kind::kPlain;
  std::string extension = Part(begin, count_).MakeUTF8String();
  for (char& c : extension) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  for (KnownExtension const& known : kKnownExtensions) {
    if (known.extension == extension) return known.kind;
  }
  return Kind::kPlain;
}

bool FileName::MatchesWildCard(char const* pattern) const {
  return MatchesWildCardInternal(units_, count_, pattern);
}

bool Equal(FileName const& a, FileName const& b) { return AreEqual(UnitsOf(a), UnitsOf(b), false); }

bool EqualIgnoringCase(FileName const& a, FileName const& b) {
  return AreEqual(UnitsOf(a), UnitsOf(b), true);
}

int StrCmp(FileName const& a, FileName const& b) {
  auto const order = std::lexicographical_compare_three_way(a.Units(), a.Units() + a.Count(),
                                                            b.Units(), b.Units() + b.Count());
  return order < 0 ? -1 : order > 0 ? 1 : 0;
}

}  // namespace MacintoshPlatform
