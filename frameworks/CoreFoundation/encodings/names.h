// The encodings that can be converted, with the name that each has for the Internet (or, for the
// few that have none, the name in general use). ICU opens its converter by the same name.
#pragma once

#include <CoreFoundation/CFString.h>

#include <algorithm>
#include <iterator>

namespace encodings {

struct NamedEncoding {
  CFStringEncoding number;
  char const* name;
};

// In ascending order of the published numbers.
inline constexpr NamedEncoding kNamedEncodings[] = {
    {0x0000, "macintosh"},      {0x0006, "x-mac-greek"},
    {0x0007, "x-mac-cyrillic"}, {0x001D, "x-mac-centraleurroman"},
    {0x0023, "x-mac-turkish"},  {0x0100, "UTF-16"},
    {0x0201, "ISO-8859-1"},     {0x0202, "ISO-8859-2"},
    {0x0203, "ISO-8859-3"},     {0x0204, "ISO-8859-4"},
    {0x0205, "ISO-8859-5"},     {0x0206, "ISO-8859-6"},
    {0x0207, "ISO-8859-7"},     {0x0208, "ISO-8859-8"},
    {0x0209, "ISO-8859-9"},     {0x020A, "ISO-8859-10"},
    {0x020B, "ISO-8859-11"},    {0x020D, "ISO-8859-13"},
    {0x020E, "ISO-8859-14"},    {0x020F, "ISO-8859-15"},
    {0x0400, "IBM437"},         {0x0405, "IBM737"},
    {0x0406, "IBM775"},         {0x0410, "IBM850"},
    {0x0411, "IBM851"},         {0x0412, "IBM852"},
    {0x0413, "IBM855"},         {0x0414, "IBM857"},
    {0x0415, "IBM860"},         {0x0416, "IBM861"},
    {0x0417, "IBM862"},         {0x0418, "IBM863"},
    {0x0419, "IBM864"},         {0x041A, "IBM865"},
    {0x041B, "IBM866"},         {0x041C, "IBM869"},
    {0x041D, "windows-874"},    {0x0420, "windows-31j"},
    {0x0421, "windows-936"},    {0x0422, "KS_C_5601-1987"},
    {0x0423, "windows-950"},    {0x0500, "windows-1252"},
    {0x0501, "windows-1250"},   {0x0502, "windows-1251"},
    {0x0503, "windows-1253"},   {0x0504, "windows-1254"},
    {0x0505, "windows-1255"},   {0x0506, "windows-1256"},
    {0x0507, "windows-1257"},   {0x0508, "windows-1258"},
    {0x0600, "US-ASCII"},       {0x0631, "GBK"},
    {0x0632, "GB18030"},        {0x0820, "ISO-2022-JP"},
    {0x0821, "ISO-2022-JP-2"},  {0x0822, "ISO-2022-JP-1"},
    {0x0830, "ISO-2022-CN"},    {0x0831, "ISO-2022-CN-EXT"},
    {0x0840, "ISO-2022-KR"},    {0x0920, "EUC-JP"},
    {0x0930, "GB2312"},         {0x0931, "EUC-TW"},
    {0x0940, "EUC-KR"},         {0x0A01, "Shift_JIS"},
    {0x0A02, "KOI8-R"},         {0x0A03, "Big5"},
    {0x0A05, "HZ-GB-2312"},     {0x0A06, "Big5-HKSCS"},
    {0x0A08, "KOI8-U"},         {0x0A10, "IMAP-mailbox-name"},
    {0x0C02, "IBM037"},         {0x04000100, "UTF-7"},
    {0x08000100, "UTF-8"},      {0x0C000100, "UTF-32"},
    {0x10000100, "UTF-16BE"},   {0x14000100, "UTF-16LE"},
    {0x18000100, "UTF-32BE"},   {0x1C000100, "UTF-32LE"},
};

// The row, or null for a number that is not listed.
inline NamedEncoding const* FindNamedEncoding(CFStringEncoding number) {
  auto const* row = std::lower_bound(
      std::begin(kNamedEncodings), std::end(kNamedEncodings), number,
      [](NamedEncoding const& left, CFStringEncoding right) { return left.number < right; });
  return row != std::end(kNamedEncodings) && row->number == number ? row : nullptr;
}

}  // namespace encodings
