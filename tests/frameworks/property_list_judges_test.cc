// What we write, read by a program that others wrote: python's plistlib.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/frameworks/property_list_print.h"
#include "tests/support/temporary_folder.h"

namespace {

// Prints as `Print` does.
constexpr char kPython[] = R"(
import datetime, plistlib, struct
def show(value):
    if isinstance(value, bool): return 'true' if value else 'false'
    if isinstance(value, int): return str(value)
    if isinstance(value, float): return 'r' + struct.pack('>d', value).hex()
    if isinstance(value, bytes): return '<' + value.hex() + '>'
    if isinstance(value, datetime.datetime):
        return '@%d' % ((value - datetime.datetime(2001, 1, 1)) // datetime.timedelta(seconds=1))
    if isinstance(value, list): return '[' + ','.join(map(show, value)) + ']'
    if isinstance(value, dict):
        return '{' + ','.join(k + ':' + v for k, v in sorted((show(k), show(v)) for k, v in value.items())) + '}'
    units = value.encode('utf-16-be')
    units = [units[i] << 8 | units[i + 1] for i in range(0, len(units), 2)]
    return '"' + ''.join(chr(u) if 32 <= u < 127 and u not in (34, 92) else '\\u%04x' % u for u in units) + '"'
for form in 'xml', 'binary':
    open(form + '.printed', 'w').write(show(plistlib.load(open(form, 'rb'))))
)";

TEST(PropertyList, IsReadByPythonAsItWasWritten) {
  if (std::system("python3 -c 'import plistlib' >/dev/null 2>&1") != 0) {
    GTEST_SKIP() << "python3 is not installed";
  }
  OwnedObject const root = Parsed(
      "<array><string>a &lt;&amp;\xC3\xA9\xF0\x9F\x98\x80&#13;&#10;</string><integer>-5</integer>"
      "<integer>9223372036854775807</integer><integer>-9223372036854775808</integer>"
      "<real>0.1</real><real>1</real><real>-1.5e300</real><true/><false/>"
      "<date>1904-01-01T00:00:00Z</date><date>2038-02-03T04:05:06Z</date>"
      "<data>AAECAwQFBgcICQoLDA0ODw==</data><data/><array/><dict/>"
      "<dict><key>\xE6\x97\xA5</key><dict><key>b</key><array><string/></array></dict></dict>"
      "</array>");
  gatotu::tests::TemporaryFolder const folder;
  for (auto const& [name, format] : {std::pair("xml", kCFPropertyListXMLFormat_v1_0),
                                     std::pair("binary", kCFPropertyListBinaryFormat_v1_0)}) {
    OwnedObject const data(CFPropertyListCreateData(nullptr, root.get(), format, 0, nullptr));
    folder.Write(name, BytesOfData(data.get()));
  }
  folder.Write("script.py", kPython);
  ASSERT_EQ(std::system(("cd " + folder.Path() + " && python3 script.py").c_str()), 0);
  EXPECT_EQ(folder.Read("xml.printed"), Print(root.get()));
  EXPECT_EQ(folder.Read("binary.printed"), Print(root.get()));
}

}  // namespace
