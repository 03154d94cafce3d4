// Property lists exchanged with programs that others wrote: python's plistlib and plistutil. Tests
// are skipped where the program is not installed.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/frameworks/property_list_print.h"

namespace {

bool Runs(std::string const& command) {
  return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

class JudgedPropertyList : public testing::Test {
 protected:
  JudgedPropertyList() {
    char folder[] = "/tmp/property_lists.XXXXXX";
    if (mkdtemp(folder) != nullptr) folder_ = folder;
  }
  ~JudgedPropertyList() override { std::filesystem::remove_all(folder_); }

  std::string Path(std::string const& name) const { return folder_ + '/' + name; }

  std::string Read(std::string const& name) const {
    std::ifstream file(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void Write(std::string const& name, std::string const& bytes) const {
    std::ofstream(Path(name), std::ios::binary) << bytes;
  }

  // Runs a script with the folder as its working directory.
  bool RunPython(std::string const& script) const {
    Write("script.py", script);
    return std::system(("cd " + folder_ + " && python3 script.py").c_str()) == 0;
  }

 private:
  std::string folder_;
};

// Prints as `Print` does, and makes property lists of every kind of value from a fixed seed.
constexpr char const* kPythonPrelude = R"(
import datetime, plistlib, random, struct
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
source = random.Random(20010101)
def text():
    ranges = [(32, 126), (32, 126), (0xA0, 0x7FF), (0x800, 0xD7FF), (0xE000, 0xFFFD), (0x10000, 0x10FFFF)]
    return ''.join(chr(source.randint(*source.choice(ranges))) for _ in range(source.randint(0, 12)))
def date():
    return datetime.datetime(source.randint(1, 9999), source.randint(1, 12), source.randint(1, 28),
                             source.randint(0, 23), source.randint(0, 59), source.randint(0, 59))
def value(depth):
    kind = source.randint(0, 7 if depth else 5)
    if kind == 0: return text()
    if kind == 1: return source.choice([-1, 1]) * (source.getrandbits(source.randint(1, 63)))
    if kind == 2: return struct.unpack('>d', struct.pack('>Q', source.getrandbits(62)))[0]
    if kind == 3: return source.random() < 0.5
    if kind == 4: return date()
    if kind == 5: return source.randbytes(source.randint(0, 100))
    if kind == 6: return [value(depth - 1) for _ in range(source.randint(0, 20))]
    return {text(): value(depth - 1) for _ in range(source.randint(0, 20))}
)";

TEST_F(JudgedPropertyList, ReadsWhatPythonWrites) {
  if (!Runs("python3 -c 'import plistlib'")) GTEST_SKIP() << "python3 is not installed";
  ASSERT_TRUE(RunPython(kPythonPrelude + std::string(R"(
root = [value(4) for _ in range(100)] + [2**63 - 1, -2**63, 2**64 - 1, [], {}, '', b'', '\t\n']
plistlib.dump(root, open('xml', 'wb'))
plistlib.dump(root, open('binary', 'wb'), fmt=plistlib.FMT_BINARY)
open('printed', 'w').write(show(root))
)")));
  std::string const printed = Read("printed");
  ASSERT_GT(printed.size(), 10'000u);
  for (char const* form : {"xml", "binary"}) {
    EXPECT_TRUE(PrintParsed(Read(form)) == printed) << form << " in " << Path(form);
  }
}

// What we write of a list in both forms.
class WrittenByUs : public JudgedPropertyList {
 protected:
  void WriteBoth() const {
    OwnedObject const source = MakeBytes(
        "<array><string>a &lt;&amp;\xC3\xA9\xF0\x9F\x98\x80&#13;&#10;</string><integer>-5</integer>"
        "<integer>9223372036854775807</integer><integer>-9223372036854775808</integer>"
        "<real>0.1</real><real>1</real><real>-1.5e300</real><true/><false/>"
        "<date>1904-01-01T00:00:00Z</date><date>2038-02-03T04:05:06Z</date>"
        "<data>AAECAwQFBgcICQoLDA0ODw==</data><data/><array/><dict/>"
        "<dict><key>\xE6\x97\xA5</key><dict><key>b</key><array><string/></array></dict></dict>"
        "</array>");
    root_.reset(CFPropertyListCreateWithData(nullptr, static_cast<CFDataRef>(source.get()), 0,
                                             nullptr, nullptr));
    for (auto format : {kCFPropertyListXMLFormat_v1_0, kCFPropertyListBinaryFormat_v1_0}) {
      OwnedObject const data(CFPropertyListCreateData(nullptr, root_.get(), format, 0, nullptr));
      Write(format == kCFPropertyListXMLFormat_v1_0 ? "xml" : "binary", BytesOfData(data.get()));
    }
  }
  std::string Printed() const { return Print(root_.get()); }

 private:
  mutable OwnedObject root_;
};

TEST_F(WrittenByUs, IsReadByPython) {
  if (!Runs("python3 -c 'import plistlib'")) GTEST_SKIP() << "python3 is not installed";
  WriteBoth();
  ASSERT_TRUE(RunPython(kPythonPrelude + std::string(R"(
for form in 'xml', 'binary':
    open(form + '.printed', 'w').write(show(plistlib.load(open(form, 'rb'))))
)")));
  EXPECT_EQ(Read("xml.printed"), Printed());
  EXPECT_EQ(Read("binary.printed"), Printed());
}

TEST_F(WrittenByUs, ComesBackThroughPlistutil) {
  if (!Runs("plistutil --version")) GTEST_SKIP() << "plistutil is not installed";
  WriteBoth();
  auto const convert = [&](std::string const& from, std::string const& form) {
    std::string const to = from + "." + form;
    EXPECT_TRUE(Runs("plistutil -i " + Path(from) + " -o " + Path(to) + " -f " + form)) << to;
    return PrintParsed(Read(to));
  };
  EXPECT_EQ(convert("xml", "bin"), Printed());
  EXPECT_EQ(convert("xml", "xml"), Printed());
  EXPECT_EQ(convert("binary", "bin"), Printed());
  EXPECT_EQ(convert("binary", "xml"), Printed());
}

}  // namespace
