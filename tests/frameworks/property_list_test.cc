// Property lists in XML and in the old text form, read and written.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/frameworks/property_list_print.h"
#include "tests/support/temporary_folder.h"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

TEST(XmlPropertyList, ReadsEveryKindOfValue) {
  std::pair<std::string, std::string> const rows[] = {
      {"<string>a &lt;&amp;&gt;&quot;&apos; b</string>", R"("a <&>\u0022' b")"},
      {"<string>&#65;&#x1F600;&#xd800;&#0;</string>", R"("A\ud83d\ude00\ud800\u0000")"},
      {"<string> <![CDATA[<&amp;]] >]]>&#x21;<!-- no --> é\xF0\x9F\x98\x80</string>",
       R"(" <&amp;]] >! \u00e9\ud83d\ude00")"},
      {"<string/>", R"("")"},
      {"<string>a<!-- < -->b<?pi?></string>", R"("ab")"},
      {"<string>a<!-- c --> b<?pi?>\t</string>", R"("a b\u0009")"},
      {"<integer> -9223372036854775808 </integer>", "-9223372036854775808"},
      {"<integer>18446744073709551615</integer>", "18446744073709551615"},
      {"<integer>+0xFFFFffffFFFFffff</integer>", "18446744073709551615"},
      {"<integer>-0x10</integer>", "-16"},
      {"<integer>007</integer>", "7"},
      {"<real> 1e-3\n</real>", "r3f50624dd2f1a9fc"},
      {"<real>-0.0</real>", "r8000000000000000"},
      {"<real>.5</real>", "r3fe0000000000000"},
      {"<real>-1e400</real>", "rfff0000000000000"},
      {"<real>1e-400</real>", "r0000000000000000"},
      {"<real>+infinity</real>", "r7ff0000000000000"},
      {"<real>-Inf</real>", "rfff0000000000000"},
      {"<real>nan</real>", "r7ff8000000000000"},
      {"<false ></false >", "false"},
      {"<date>2001-01-01T00:00:00Z</date>", "@0"},
      {"<date>1969-12-31T23:59:59Z</date>", "@-978307201"},
      {"<date>2024-02-29T12:34:56Z</date>", "@730902896"},
      {"<date>0001-01-01T00:00:00Z</date>", "@-63113904000"},
      {"<date>-0001-03-01T00:00:00Z</date>", "@-63171964800"},
      {"<data>\n\tAAEC\n\t/+8=\n</data>", "<000102ffef>"},
      {"<dict></dict>", "{}"},
      {"<array><dict/><array><true/></array><string>x</string></array>", R"([{},[true],"x"])"},
      {"<dict a='>' b=\"/\"><key>b</key><true/><key>a</key><integer>1</integer></dict>",
       R"({"a":1,"b":true})"},
      {"<dict><key>a</key><false/><key>b</key><array/><key>a</key><true/></dict>",
       R"({"a":true,"b":[]})"},
      {"<dict><key/><string>empty</string><key>&#233;</key><true/></dict>",
       R"({"":"empty","\u00e9":true})"},
  };
  std::string const before =
      "<?xml version='1.0'?><!-- c --><!DOCTYPE plist [ <!-- ]> \" -->\n"
      "<!ENTITY a \"]>\"> ]><plist version='1.0'>\n";
  for (auto const& [text, printed] : rows) {
    for (CFOptionFlags options : {0, 1, 2}) EXPECT_EQ(PrintParsed(text, options), printed) << text;
    EXPECT_EQ(PrintParsed(before + text + "\n</plist> <!-- end -->\n"), printed) << text;
  }
}

TEST(XmlPropertyList, RefusesWhatIsNoneWithTheLine) {
  std::pair<std::string, std::vector<std::string>> const rows[] = {
      {"Unexpected end on line 1", {"<string>a", "<string><![CDATA[x</string>"}},
      {"Unexpected end on line 3", {"<array>\n<true/>\n"}},
      {"Unknown entity or character number on line 2", {"<string>\n&nbsp;</string>"}},
      {"Unknown entity or character number on line 1",
       {"<string>&#x110000;</string>", "<string>&#;</string>", "<string>&amp</string>"}},
      {"Malformed UTF-8 on line 1", {"<string>\xC0\x80</string>", "<string>\xED\xA0\x80</string>"}},
      {"Closing tag expected on line 1", {"<string>a</key>", "<string>a<b/></string>"}},
      {"Malformed or too large <integer> on line 1",
       {"<integer></integer>", "<integer>--1</integer>", "<integer>1 2</integer>",
        "<integer>18446744073709551616</integer>", "<integer>-9223372036854775809</integer>"}},
      {"Malformed <real> on line 1", {"<real>1,5</real>", "<real>--inf</real>"}},
      {"Malformed <date> on line 1",
       {"<date>2001-13-01T00:00:00Z</date>", "<date>2001-00-01T00:00:00Z</date>",
        "<date>2023-02-29T00:00:00Z</date>", "<date>2001-01-01T24:00:00Z</date>",
        "<date>2001-01-01T00:60:00Z</date>", "<date>2001-01-01</date>"}},
      {"Malformed <data> on line 1",
       {"<data>A</data>", "<data>AA=A</data>", "<data>AA*=</data>", "<data>AAA==</data>"}},
      {"Value without key in <dict> on line 1", {"<dict><true/></dict>"}},
      {"Key without value in <dict> on line 1", {"<dict><key>a</key></dict>"}},
      {"Misplaced <key> on line 1",
       {"<dict><key>a</key><key>b</key></dict>", "<array><key>a</key></array>", "<key>a</key>"}},
      {"Text between elements on line 1", {"<array>x</array>"}},
      {"Closing tag of another element on line 1", {"<array></dict>"}},
      {"Closing tag without its element on line 1", {"</array>"}},
      {"Unknown element on line 1", {"<set/>"}},
      {"Empty <plist> on line 1", {"<plist/>", "<plist></plist>"}},
      {"<plist> inside <plist> on line 1", {"<plist><plist><true/></plist></plist>"}},
      {"More than one value in <plist> on line 1", {"<plist><true/><true/></plist>"}},
      {"Text behind the end of the property list on line 4", {"<plist><true/>\n\n</plist>\nx"}},
      {"Text behind the end of the property list on line 1", {"<true/><true/>"}},
      {"Unterminated document type on line 1", {"<!DOCTYPE plist ["}},
      {"Unterminated comment on line 1", {"<!-- "}},
      {"Unterminated processing instruction on line 1", {"<?xml "}},
      {"Unterminated tag on line 1", {"<true"}},
      {"Unterminated quotation on line 1", {"<array a='>"}},
      {"There is nothing to read", {""}},
      {"The bytes are not text in their encoding", {"\xFF\xFE<\0s"s}},
      {"Unknown encoding", {"<?xml version='1.0' encoding='x-none'?><true/>"}},
  };
  for (auto const& [message, texts] : rows) {
    for (std::string const& text : texts) EXPECT_EQ(PrintParsed(text), "! " + message);
  }
}

TEST(XmlPropertyList, BoundsNesting) {
  auto const nested = [](std::string_view open, std::string_view close, int levels) {
    std::string text;
    for (int i = 0; i < levels; ++i) text += open;
    for (int i = 0; i < levels; ++i) text += close;
    return text;
  };
  for (auto const& [open, close] :
       {std::pair("<array>"sv, "</array>"sv), std::pair("("sv, ")"sv)}) {
    EXPECT_EQ(PrintParsed(nested(open, close, 512)), nested("[", "]", 512));
    EXPECT_EQ(PrintParsed(nested(open, close, 513)), "! Nested too deeply on line 1");
    EXPECT_EQ(PrintParsed(nested(open, close, 1'000'000)), "! Nested too deeply on line 1");
  }
}

// Containers of any size, beside each other and inside each other, against mutable ones, which are
// made value by value.
TEST(XmlPropertyList, HoldsManyValuesAsFew) {
  for (int const count : {40, 40'000}) {
    std::string array = "<array>", dictionary = "<dict>";
    for (int i = 0; i < count; ++i) {
      std::string const number = "<integer>" + std::to_string(i) + "</integer>";
      array += number;
      // Every third key was there before.
      dictionary += "<key>" + std::to_string(i % 3 == 0 ? i / 3 : i) + "</key>" + number;
    }
    array += "</array>";
    dictionary += "</dict>";
    std::string const text = "<array><true/>" + array + dictionary + "<dict><key>a</key>" +
                             dictionary + "<key>b</key>" + array + "</dict><false/></array>";
    std::string const printed = PrintParsed(text);
    EXPECT_EQ(printed.substr(0, 10), "[true,[0,1");
    EXPECT_TRUE(printed == PrintParsed(text, kCFPropertyListMutableContainers)) << count;
  }
}

// What was made together ends apart, wherever and whenever each object is released.
TEST(PropertyList, LeavesEachObjectToItsOwners) {
  std::string text = "<array>";
  for (int i = 0; i < 20'000; ++i) text += "<string>" + std::to_string(i) + "</string>";
  OwnedObject root = Parsed(text + "</array>");
  ASSERT_NE(root, nullptr);
  auto const array = static_cast<CFArrayRef>(root.get());
  std::vector<OwnedObject> kept[2];
  for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
    kept[i % 2].emplace_back(CFRetain(CFArrayGetValueAtIndex(array, i)));
  }
  std::thread other([&] { kept[0].clear(); });
  root.reset();
  EXPECT_EQ(Print(kept[1][9'999].get()), "\"19999\"");
  kept[1].resize(1);
  other.join();
  EXPECT_EQ(CFGetRetainCount(kept[1][0].get()), 1);
  EXPECT_EQ(Print(kept[1][0].get()), "\"1\"");
}

TEST(PropertyListSource, IsUnderstoodInEveryEncoding) {
  std::string const body = "<string>Zo\xC3\xAB\xE2\x82\xAC</string>";
  OwnedString const text = Make(body, kCFStringEncodingUTF8);
  std::vector<std::string> sources = {
      " \n<?xml version=\"1.0\" encoding = 'Macintosh' ?><string>Zo\x91\xDB</string>",
      "<?xml version='1.0' encoding=\"windows-1252\"?><string>Zo\xEB\x80</string>",
      "<?xml version='1.0' encoding='UTF-16'?>" + body};
  std::pair<CFStringEncoding, std::string> const marked[] = {
      {kCFStringEncodingUTF8, "\xEF\xBB\xBF"},     {kCFStringEncodingUTF16LE, "\xFF\xFE"},
      {kCFStringEncodingUTF16BE, "\xFE\xFF"},      {kCFStringEncodingUTF32LE, "\xFF\xFE\0\0"s},
      {kCFStringEncodingUTF32BE, "\0\0\xFE\xFF"s},
  };
  for (auto const& [encoding, mark] : marked) {
    std::string const bytes = BytesOf(text.get(), encoding);
    sources.insert(sources.end(), {bytes, mark + bytes});
  }
  for (auto const& source : sources)
    EXPECT_EQ(PrintParsed(source), R"("Zo\u00eb\u20ac")") << source;
}

TEST(TextPropertyList, IsReadAsStringsFilesHaveIt) {
  std::pair<std::string, std::string> const rows[] = {
      {"// only\n/* comments */ ", "{}"},
      {"word", R"("word")"},
      {"'it \"is\"'", R"("it \u0022is\u0022")"},
      {R"("a\"\\\n\t\U00e9\U1F4A9\341\101\q")",
       R"("a\u0022\u005c\u000a\u0009\u00e9\u1f4a9\u00c6Aq")"},
      {"<0fbd 77\n>", "<0fbd77>"},
      {"<>", "<>"},
      {"(a, (), {b = c;}, <00>,)", R"(["a",[],{"b":"c"},<00>])"},
      {"{ a = 1; /* c */ \"b\" = (x); }", R"({"a":"1","b":["x"]})"},
      {"\"Zo\xC3\xAB\" = \"\xE2\x82\xAC\";\nsame;\n// end",
       R"({"Zo\u00eb":"\u20ac","same":"same"})"},
      {"a = 1; a = com.x/y:z_$-2;", R"({"a":"com.x/y:z_$-2"})"},
      {"\xFF\xFE\"\0a\0\"\0=\0b\0;\0"s, R"({"a":"b"})"},
      {"\0\"\0a\0\"\0;"s, R"({"a":"a"})"},
      {"{a=1}", "! Missing ; in a dictionary on line 1"},
      {"a=1;\nb=2", "! Missing ; in a dictionary on line 2"},
      {"a b", "! Missing ; in a dictionary on line 1"},
      {"a=1; }", "! Text behind the end of the property list on line 1"},
      {"(a b)", "! Missing ) of an array on line 1"},
      {"{a=1;", "! Missing } of a dictionary on line 1"},
      {"(a) x", "! Text behind the end of the property list on line 1"},
      {"\n\"a", "! Unterminated string on line 2"},
      {"\"a\\", "! Unterminated string on line 1"},
      {"<abc>", "! Half a byte in data on line 1"},
      {"(<zz>)", "! Malformed data on line 1"},
      {"(<ab", "! Unterminated data on line 1"},
      {"/* a", "! Unterminated comment on line 1"},
      {"\"\xFF\"", "! Malformed UTF-8 on line 1"},
      {"%", "! Unexpected character on line 1"},
      {"a = ", "! Unexpected end on line 1"},
  };
  for (auto const& [text, printed] : rows) EXPECT_EQ(PrintParsed(text), printed) << text;
  CFPropertyListFormat format = {};
  OwnedObject(CFPropertyListCreateWithData(nullptr, MakeBytes("a").get(), 0, &format, nullptr));
  EXPECT_EQ(format, kCFPropertyListOpenStepFormat);
}

TEST(PropertyList, ComesBackAsItWasWritten) {
  // Every unit, but of those that would pair up only the first and the last pair.
  std::vector<UniChar> units = {0xD83D, 0xDE00, 0xDBFF, 0xDFFF};
  for (int unit = 0xFFFF; unit >= 0; --unit) units.push_back(static_cast<UniChar>(unit));
  CFMutableArrayRef const array = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
  OwnedObject const owner(array);
  auto const append = [&](CFTypeRef made) { CFArrayAppendValue(array, OwnedObject(made).get()); };
  append(CFStringCreateWithCharacters(nullptr, units.data(), static_cast<CFIndex>(units.size())));
  for (SInt64 value : {INT64_MIN, -1L, 0L, 1L, 255L, 256L, 65536L, 4294967296L, INT64_MAX}) {
    append(CFNumberCreate(nullptr, kCFNumberSInt64Type, &value));
  }
  CFSInt128Struct const widest = {0, ~UInt64{0}};
  append(CFNumberCreate(nullptr, kCFNumberSInt128Type, &widest));
  for (double value : {0.1, -0.0, 0.0, 1.0, 5e-324, 1.7976931348623157e308, -HUGE_VAL, HUGE_VAL,
                       std::nan(""), 123456789012345680.0}) {
    append(CFNumberCreate(nullptr, kCFNumberFloat64Type, &value));
  }
  for (double time : {0.0, -1.0, 86399.0, -63113904000.0, 1e12, -1e12, 6.3e10}) {
    append(CFDateCreate(nullptr, time));
  }
  for (std::size_t size : {0, 1, 2, 3, 56, 57, 58, 200}) {
    append(MakeBytes(std::string(size, '\xFE')).release());
  }
  CFArrayAppendValue(array, kCFBooleanTrue);
  for (auto format : {kCFPropertyListXMLFormat_v1_0, kCFPropertyListBinaryFormat_v1_0}) {
    Owned<CFDataRef> const written(CFPropertyListCreateData(nullptr, array, format, 0, nullptr));
    ASSERT_NE(written, nullptr);
    CFPropertyListFormat found = {};
    OwnedObject const read(
        CFPropertyListCreateWithData(nullptr, written.get(), 0, &found, nullptr));
    EXPECT_EQ(found, format);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(Print(read.get()), Print(array));
  }
}

// Reads both forms and says each in the binary one.
constexpr char kPython[] = R"(
import plistlib
for form in 'xml', 'binary':
    plistlib.dump(plistlib.load(open(form, 'rb')), open(form + '.read', 'wb'), fmt=plistlib.FMT_BINARY)
)";

TEST(PropertyList, IsUnderstoodByPython) {
  if (std::system("python3 -c 'import plistlib' >/dev/null 2>&1") != 0) GTEST_SKIP();
  OwnedObject const root = Parsed(
      "<array><string>a &lt;&amp;\xC3\xA9\xF0\x9F\x98\x80&#13;&#10;</string><integer>-5</integer>"
      "<integer>9223372036854775807</integer><integer>-9223372036854775808</integer>"
      "<real>0.1</real><real>1</real><real>-1.5e300</real><true/><false/>"
      "<date>1904-01-01T00:00:00Z</date><date>2038-02-03T04:05:06Z</date>"
      "<data>AAECAwQFBgcICQoLDA0ODw==</data><data/><array/><dict/>"
      "<dict><key>\xE6\x97\xA5</key><dict><key>b</key><array><string/></array></dict></dict>"
      "</array>");
  gatotu::tests::TemporaryFolder const folder;
  folder.Write("script.py", kPython);
  std::pair<char const*, CFPropertyListFormat> const forms[] = {
      {"xml", kCFPropertyListXMLFormat_v1_0}, {"binary", kCFPropertyListBinaryFormat_v1_0}};
  for (auto const& [name, format] : forms) {
    OwnedObject const data(CFPropertyListCreateData(nullptr, root.get(), format, 0, nullptr));
    folder.Write(name, BytesOfData(data.get()));
  }
  ASSERT_EQ(std::system(("cd " + folder.Path() + " && python3 script.py").c_str()), 0);
  for (std::string const file : {"xml.read", "binary.read"}) {
    EXPECT_EQ(PrintParsed(folder.Read(file)), Print(root.get())) << file;
  }
}

TEST(XmlPropertyList, IsLaidOutAsThePlatformDoes) {
  OwnedObject const root = Parsed("{ b = (x, <00>); a = {}; \"<&>\" = (); A = \"\\r\"; }");
  OwnedObject const written(CFPropertyListCreateXMLData(nullptr, root.get()));
  EXPECT_EQ(BytesOfData(written.get()),
            R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>&lt;&amp;&gt;</key>
	<array/>
	<key>A</key>
	<string>&#13;</string>
	<key>a</key>
	<dict/>
	<key>b</key>
	<array>
		<string>x</string>
		<data>
		AA==
		</data>
	</array>
</dict>
</plist>
)");
}

TEST(PropertyList, IsNotWrittenOfWhatIsNone) {
  OwnedObject const date(CFDateCreate(nullptr, std::nan("")));
  CFMutableArrayRef const circle = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
  OwnedObject const owner(circle);
  CFArrayAppendValue(circle, circle);
  // Each holds the one before it, or holds it twice: 2^40 values of few objects.
  OwnedObject deep(CFRetain(kCFBooleanTrue)), shared(CFRetain(kCFBooleanTrue));
  for (int i = 0; i < 513; ++i) {
    void const* value = deep.get();
    deep.reset(CFArrayCreate(nullptr, &value, 1, &kCFTypeArrayCallBacks));
    void const* twice[] = {shared.get(), shared.get()};
    if (i < 40) shared.reset(CFArrayCreate(nullptr, twice, 2, &kCFTypeArrayCallBacks));
  }
  void const* pair[] = {kCFBooleanTrue};
  OwnedObject const keyed(CFDictionaryCreate(nullptr, pair, pair, 1, &kCFTypeDictionaryKeyCallBacks,
                                             &kCFTypeDictionaryValueCallBacks));
  OwnedObject const pointers(CFArrayCreate(nullptr, pair, 1, nullptr));
  auto const expect_none = [](CFPropertyListFormat format, std::vector<CFTypeRef> const& roots) {
    for (CFTypeRef const root : roots) {
      EXPECT_EQ(CFPropertyListCreateData(nullptr, root, format, 0, nullptr), nullptr) << format;
    }
  };
  expect_none(kCFPropertyListXMLFormat_v1_0,
              {kCFNull, date.get(), circle, shared.get(), keyed.get()});
  expect_none(kCFPropertyListBinaryFormat_v1_0,
              {nullptr, circle, deep.get(), pointers.get(), keyed.get()});
  expect_none(kCFPropertyListOpenStepFormat, {kCFBooleanTrue});
  CFArrayRemoveAllValues(circle);
}

}  // namespace
