#include <CoreServices/TextEncodingConverter.h>
#include <gtest/gtest.h>

#include <fstream>

#include "frameworks/CoreFoundation/encodings/names.h"
#include "tests/frameworks/cf_text.h"

namespace {

using namespace std::string_literals;

TEST(Encodings, ConvertBothWays) {
  std::tuple<CFStringEncoding, std::string, std::string> const rows[] = {
      {kCFStringEncodingMacRoman, "Zoë ƒ∞€ﬂ", "Zo\x91 \xc4\xb0\xdb\xdf"},
      {kCFStringEncodingWindowsLatin1, "Zoë €“”\u0081", "Zo\xeb \x80\x93\x94\x81"},
      {kCFStringEncodingISOLatin1, "Zoë\u0080", "Zo\xeb\x80"},
      {kCFStringEncodingISOLatin9, "€", "\xa4"},
      {kCFStringEncodingKOI8_R, "Мир", "\xed\xc9\xd2"},
      {kCFStringEncodingShiftJIS, "日本ｱ", "\x93\xfa\x96\x7b\xb1"},
      {kCFStringEncodingDOSJapanese, "日本①", "\x93\xfa\x96\x7b\x87\x40"},
      {kCFStringEncodingEUC_JP, "日本", "\xc6\xfc\xcb\xdc"},
      {kCFStringEncodingISO_2022_JP, "a日b", "a\x1b$BF|\x1b(Bb"},
      {kCFStringEncodingEUC_KR, "한국", "\xc7\xd1\xb1\xb9"},
      {kCFStringEncodingDOSKorean, "뷁", "\x94\xee"},
      {kCFStringEncodingBig5, "中文", "\xa4\xa4\xa4\xe5"},
      {kCFStringEncodingEUC_CN, "中文", "\xd6\xd0\xce\xc4"},
      {kCFStringEncodingGB_18030_2000, "中𠀀", "\xd6\xd0\x95\x32\x82\x36"},
      {kCFStringEncodingUTF8, "aé€😀", "aé€😀"},
      {kCFStringEncodingUTF16BE, "a😀", "\0a\xd8\x3d\xde\x00"s},
      {kCFStringEncodingUTF16LE, "a😀", "a\0\x3d\xd8\x00\xde"s},
      {kCFStringEncodingUTF32BE, "a😀", "\0\0\0a\0\x01\xf6\0"s},
      {kCFStringEncodingUTF7, "é", "+AOk-"},
  };
  for (auto const& [encoding, utf8, bytes] : rows) {
    EXPECT_EQ(BytesOf(Make(utf8, kCFStringEncodingUTF8).get(), encoding), bytes) << encoding;
    OwnedString const back = Make(bytes, encoding);
    ASSERT_NE(back, nullptr) << encoding;
    EXPECT_EQ(BytesOf(back.get(), kCFStringEncodingUTF8), utf8) << encoding;
  }
}

TEST(Encodings, OfOneByteKeepEveryByte) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  for (CFStringEncoding encoding :
       {kCFStringEncodingMacRoman, kCFStringEncodingWindowsLatin1, kCFStringEncodingISOLatin1}) {
    EXPECT_EQ(BytesOf(Make(all, encoding).get(), encoding), all) << encoding;
  }
}

TEST(Encodings, ReplaceOrStopAtWhatTheyLack) {
  std::pair<CFStringEncoding, std::string> const rows[] = {
      {kCFStringEncodingMacRoman, "a?\x8e?"},  {kCFStringEncodingWindowsLatin1, "a?\xe9?"},
      {kCFStringEncodingISOLatin2, "a?\xe9?"}, {kCFStringEncodingASCII, "a???"},
      {kCFStringEncodingShiftJIS, "a???"},     {kCFStringEncodingISO_2022_JP, "a???"}};
  OwnedString const text = Make("a😀é\u200d", kCFStringEncodingUTF8);
  for (auto const& [encoding, replaced] : rows) {
    SCOPED_TRACE(encoding);
    EXPECT_EQ(BytesOf(text.get(), encoding, '?'), replaced);
    EXPECT_EQ(BytesOf(text.get(), encoding, 0), "a");
    CFRange const all = CFRangeMake(0, 5);
    EXPECT_EQ(CFStringGetBytes(text.get(), all, encoding, 0, false, nullptr, 0, nullptr), 1);
  }
  UniChar const units[] = {'a', 0xD800};
  OwnedString const unpaired(CFStringCreateWithCharacters(nullptr, units, 2));
  EXPECT_EQ(BytesOf(unpaired.get(), kCFStringEncodingUTF8), "a?");
  EXPECT_EQ(BytesOf(unpaired.get(), kCFStringEncodingGB_18030_2000), "a?");
  EXPECT_EQ(BytesOf(unpaired.get(), kCFStringEncodingEUC_JP, 0), "a");
}

TEST(Encodings, FillABufferWithWholeCharactersOnly) {
  // Capacity, units that fit in, and the bytes that they are.
  std::tuple<CFStringEncoding, CFIndex, CFIndex, CFIndex> const rows[] = {
      {kCFStringEncodingUTF8, 6, 2, 4},         {kCFStringEncodingUTF8, 11, 5, 11},
      {kCFStringEncodingUTF8, 10, 3, 7},        {kCFStringEncodingUTF16, 7, 3, 6},
      {kCFStringEncodingEUC_JP, 4, 2, 3},       {kCFStringEncodingEUC_JP, 0, 0, 0},
      {kCFStringEncodingEUC_JP, 6, 5, 6},       {kCFStringEncodingISO_2022_KR, 1, 0, 0},
      {kCFStringEncodingGB_18030_2000, 8, 3, 5}};
  OwnedString const text = Make("a日本😀", kCFStringEncodingUTF8);
  for (auto const& [encoding, capacity, units, bytes] : rows) {
    UInt8 buffer[16];
    CFIndex used = -1;
    CFIndex const taken = CFStringGetBytes(text.get(), CFRangeMake(0, 5), encoding, '?', false,
                                           buffer, capacity, &used);
    EXPECT_EQ(std::pair(taken, used), std::pair(units, bytes)) << encoding << " in " << capacity;
  }
}

TEST(Encodings, MarkTheByteOrderOutside) {
  std::tuple<char const*, CFStringEncoding, std::string> const written[] = {
      {"a", kCFStringEncodingUTF16, "\xff\xfe\x61\0"s},
      {"", kCFStringEncodingUTF16, "\xff\xfe"},
      {"", kCFStringEncodingUTF32, "\xff\xfe\0\0"s},
      {"a", kCFStringEncodingUTF16BE, "\0a"s},
      {"a", kCFStringEncodingUTF8, "a"},
  };
  for (auto const& [text, encoding, bytes] : written) {
    EXPECT_EQ(BytesOf(Make(text, kCFStringEncodingUTF8).get(), encoding, '?', true), bytes);
  }
  std::pair<CFStringEncoding, std::string> const read[] = {
      {kCFStringEncodingUTF16, "\xfe\xff\0a"s},
      {kCFStringEncodingUTF16, "\xff\xfe\x61\0"s},
      {kCFStringEncodingUTF16, "\0a"s},
      {kCFStringEncodingUTF32, "\0\0\xfe\xff\0\0\0a"s},
      {kCFStringEncodingUTF8, "\xef\xbb\xbf\x61"}};
  for (auto const& [encoding, bytes] : read) {
    EXPECT_TRUE(CFEqual(Make(bytes, encoding, true).get(), CFSTR("a"))) << bytes;
  }
  EXPECT_EQ(CFStringGetLength(Make("\xef\xbb\xbf\x61", kCFStringEncodingUTF8).get()), 2);
}

TEST(Encodings, RefuseBytesThatAreNoText) {
  std::pair<CFStringEncoding, std::string> const rows[] = {
      {kCFStringEncodingASCII, "\x80"},  {kCFStringEncodingUTF8, "a\xe2\x82"},
      {kCFStringEncodingUTF16, "abc"},   {kCFStringEncodingUTF32BE, "\0\x11\0\0"s},
      {kCFStringEncodingEUC_JP, "\xff"}, {kCFStringEncodingShiftJIS, "\x93"},
      {kCFStringEncodingInvalidId, "a"}, {0x1234, "a"}};
  for (auto const& [encoding, bytes] : rows) EXPECT_EQ(Make(bytes, encoding), nullptr) << encoding;
  EXPECT_EQ(BytesOf(CFSTR("a"), 0x1234), "");
}

OSStatus Find(std::string const& name, TextEncoding& encoding) {
  Str255 text;
  text[0] = static_cast<unsigned char>(name.size());
  name.copy(reinterpret_cast<char*>(text + 1), 255);
  return TECGetTextEncodingFromInternetName(text, &encoding);
}

TEST(EncodingNames, AreFoundByEveryAliasInAnyCase) {
  std::pair<char const*, TextEncoding> const rows[] = {
      {"UTF-8", 0x08000100}, {"utf8", 0x08000100}, {"utf-16be", 0x10000100},
      {"latin1", 0x0201},    {"IBM819", 0x0201},   {"WINDOWS-1252", 0x0500},
      {"us-ascii", 0x0600},  {"csASCII", 0x0600},  {"Macintosh", 0},
      {"shift_jis", 0x0A01}, {"MS_Kanji", 0x0A01}, {"Windows-31J", 0x0420},
      {"cp932", 0x0420},     {"EUC-JP", 0x0920},   {"gb2312", 0x0930},
      {"gbk", 0x0631},       {"GB18030", 0x0632},  {"csBig5", 0x0A03},
      {"cp950", 0x0423},     {"euc-kr", 0x0940},   {"ks_c_5601-1987", 0x0422},
      {"koi8-r", 0x0A02},    {"TIS-620", 0x041D},  {"x-mac-cyrillic", 0x0007}};
  TextEncoding encoding = 0xdead;
  for (auto const& [name, number] : rows) {
    EXPECT_EQ(Find(name, encoding), noErr) << name;
    EXPECT_EQ(encoding, number) << name;
  }
  encoding = 0xdead;
  for (std::string const& name : {""s, "klingon"s, "utf-9"s, "UTF-8\0x"s, std::string(255, 'a')}) {
    EXPECT_EQ(Find(name, encoding), -8739) << name;
    EXPECT_EQ(encoding, 0xdeadu);
  }
}

TEST(EncodingNames, LeadBackToTheirNumberAndAConverter) {
  CFStringEncoding before = 0;
  for (auto const& row : encodings::kNamedEncodings) {
    EXPECT_TRUE(before < row.number || row.number == 0) << row.name;
    before = row.number;
    CFStringRef const name = CFStringConvertEncodingToIANACharSetName(row.number);
    EXPECT_EQ(CFStringConvertIANACharSetNameToEncoding(name), row.number) << row.name;
    EXPECT_FALSE(BytesOf(CFSTR("a"), row.number).empty()) << row.name;
  }
  EXPECT_EQ(CFStringConvertEncodingToIANACharSetName(0x1234), nullptr);
  EXPECT_EQ(CFStringConvertIANACharSetNameToEncoding(CFSTR("klingon")), kCFStringEncodingInvalidId);
}

bool MapsIcu() {
  std::ifstream maps("/proc/self/maps");
  return std::string(std::istreambuf_iterator<char>(maps), {}).find("libicu") != std::string::npos;
}

TEST(EncodingNames, OfTheCommonestLeaveIcuUnloaded) {
  if (MapsIcu()) GTEST_SKIP() << "an earlier test of this process loaded it";
  TextEncoding encoding = 0;
  EXPECT_EQ(Find("UTF-8", encoding), noErr);
  BytesOf(Make("Zo\x91", kCFStringEncodingMacRoman).get(), kCFStringEncodingWindowsLatin1);
  EXPECT_FALSE(MapsIcu());
  EXPECT_EQ(Find("Shift_JIS", encoding), noErr);
  EXPECT_TRUE(MapsIcu());
}

}  // namespace
