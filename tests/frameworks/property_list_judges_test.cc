// What we write, read by programs that others wrote: python's plistlib and plistutil. Tests are
// skipped where the program is not installed. What they write is asked for with the command.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/frameworks/property_list_print.h"
#include "tests/support/temporary_folder.h"

namespace {

bool Runs(std::string const& command) {
  return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

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

// What we write of a list in both forms.
class WrittenByUs : public testing::Test {
 protected:
  WrittenByUs() {
    root_ = Parsed(
        "<array><string>a &lt;&amp;\xC3\xA9\xF0\x9F\x98\x80&#13;&#10;</string><integer>-5</integer>"
        "<integer>9223372036854775807</integer><integer>-9223372036854775808</integer>"
        "<real>0.1</real><real>1</real><real>-1.5e300</real><true/><false/>"
        "<date>1904-01-01T00:00:00Z</date><date>2038-02-03T04:05:06Z</date>"
        "<data>AAECAwQFBgcICQoLDA0ODw==</data><data/><array/><dict/>"
        "<dict><key>\xE6\x97\xA5</key><dict><key>b</key><array><string/></array></dict></dict>"
        "</array>");
    for (auto format : {kCFPropertyListXMLFormat_v1_0, kCFPropertyListBinaryFormat_v1_0}) {
      OwnedObject const data(CFPropertyListCreateData(nullptr, root_.get(), format, 0, nullptr));
      folder_.Write(format == kCFPropertyListXMLFormat_v1_0 ? "xml" : "binary",
                    BytesOfData(data.get()));
    }
  }
  std::string Printed() const { return Print(root_.get()); }

  gatotu::tests::TemporaryFolder folder_;

 private:
  OwnedObject root_;
};

TEST_F(WrittenByUs, IsReadByPython) {
  if (!Runs("python3 -c 'import plistlib'")) GTEST_SKIP() << "python3 is not installed";
  folder_.Write("script.py", kPython);
  ASSERT_EQ(std::system(("cd " + folder_.Path() + " && python3 script.py").c_str()), 0);
  EXPECT_EQ(folder_.Read("xml.printed"), Printed());
  EXPECT_EQ(folder_.Read("binary.printed"), Printed());
}

TEST_F(WrittenByUs, ComesBackThroughPlistutil) {
  if (!Runs("plistutil --version")) GTEST_SKIP() << "plistutil is not installed";
  auto const convert = [&](std::string const& from, std::string const& form) {
    std::string const to = from + "." + form;
    EXPECT_TRUE(
        Runs("plistutil -i " + folder_.Path(from) + " -o " + folder_.Path(to) + " -f " + form))
        << to;
    return PrintParsed(folder_.Read(to));
  };
  EXPECT_EQ(convert("xml", "bin"), Printed());
  EXPECT_EQ(convert("xml", "xml"), Printed());
  EXPECT_EQ(convert("binary", "bin"), Printed());
  EXPECT_EQ(convert("binary", "xml"), Printed());
}

}  // namespace
