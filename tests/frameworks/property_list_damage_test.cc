// Property lists that are damaged at random, and what reading takes.
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <string>

#include "tests/frameworks/property_list_print.h"
#include "tests/support/binary_list_text.h"
#include "tests/support/sanitized.h"

namespace {

using namespace std::string_literals;

std::string const kSources[] = {
    "<?xml version='1.0' encoding='UTF-8'?><!DOCTYPE plist [<!ENTITY x 'y'>]><plist version='1.0'>"
    "<dict><key>a</key><array><integer>-12</integer><real>1.5</real><true/></array>"
    "<key>\xC3\xA9&amp;&#xE9;</key><string>a<![CDATA[<x>]]><!-- c -->&lt;</string>"
    "<key>d</key><date>2001-02-03T04:05:06Z</date><key>e</key><data>AAECAw==</data></dict></plist>",
    "// c\n{ a = (1, \"b\\U00e9\\341\\n\", <00 ff>, {}); 'q' = /* c */ x.y; \"\xC3\xA9\" = z; k; }",
    "\"key\" = \"value\";\nother;\n",
    BinaryListText({"\xD3\1\2\3\4\5\6", "\x51k", "\x62\0b\0\xE9"s, "\x5F\x10\x03key",
                    "\xA6\7\x08\x09\x0A\x0B\5", "\x13\xFF\0\0\0\0\0\0\0"s, "\x80\5",
                    "\x23\x40\0\0\0\0\0\0\0"s, "\x33\x41\0\0\0\0\0\0\0"s, "\x43xyz", "\xD1\1\x0B",
                    "\x14" + std::string(16, '\0')}),
};

// One edit: a byte or a bit changed, a piece taken out, or a piece repeated elsewhere.
void Damage(std::string& text, std::mt19937& random) {
  if (text.empty()) return;
  auto const below = [&](std::size_t bound) { return static_cast<std::size_t>(random()) % bound; };
  std::size_t const at = below(text.size());
  switch (random() % 5) {
    case 0:
      text[at] = static_cast<char>(random());
      break;
    case 1:
      text[at] = static_cast<char>(text[at] ^ 1 << random() % 8);
      break;
    case 2:
      text.erase(at, below(8) + 1);
      break;
    case 3:
      text.insert(at, text.substr(below(text.size()), below(40)));
      break;
    default:
      text.resize(at);
  }
}

// The sanitizers watch; what is still read must be writable in the binary form, which has room for
// all that any form can hold, and come back equal.
TEST(DamagedPropertyList, IsReadOrRefusedButNeverHarmful) {
  std::mt19937 random(20010101);
  int read = 0, refused = 0;
  for (int round = 0; round < 60'000; ++round) {
    std::string text = kSources[random() % std::size(kSources)];
    for (std::size_t edits = 1 + random() % 3; edits > 0; --edits) Damage(text, random);
    OwnedObject const root = Parsed(text, round % 3);
    if (root == nullptr) {
      ++refused;
      continue;
    }
    ++read;
    OwnedObject const written(CFPropertyListCreateData(
        nullptr, root.get(), kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
    ASSERT_NE(written, nullptr) << text;
    OwnedObject const again = Parsed(BytesOfData(written.get()));
    ASSERT_NE(again, nullptr) << text;
    ASSERT_TRUE(CFEqual(root.get(), again.get())) << text;
  }
  EXPECT_GT(read, 1000);
  EXPECT_GT(refused, 1000);
}

TEST(DamagedPropertyList, IsRefusedWhereverItIsCutOff) {
  EXPECT_EQ(PrintParsed(kSources[0])[0], '{');
  for (std::size_t size = 1; size < kSources[0].size(); ++size) {
    EXPECT_EQ(PrintParsed(kSources[0].substr(0, size))[0], '!') << size;
  }
}

// Eight million bytes: the piece again and again, with another number of six digits in place of a
// "#" in it each time.
std::string Repeated(std::string_view head, std::string_view piece, std::string_view foot) {
  std::string text(head);
  std::size_t const mark = piece.find('#');
  for (int number = 100'000; text.size() < 8'000'000; ++number) {
    text += piece.substr(0, mark);
    if (mark != piece.npos) text.append(std::to_string(number)) += piece.substr(mark + 1);
  }
  return text += foot;
}

// The peak of a process of its own that does this.
template <typename Act>
double PeakOf(Act&& act) {
  // What the heap holds in reserve would else be taken before the peak rises, and what was freed
  // would make it grow where it maps now.
  mallopt(M_MMAP_THRESHOLD, 128 << 10);
  malloc_trim(0);
  pid_t const child = fork();
  if (child == 0) _exit(act() ? 0 : 1);
  int status = -1;
  rusage usage = {};
  wait4(child, &status, 0, &usage);
  return status == 0 ? static_cast<double>(usage.ru_maxrss) * 1024 : 0;
}

// By how many bytes reading raises the peak, the copy that the reader is given among them.
double PeakOfReading(std::string const& bytes) {
  return PeakOf([&] { return Parsed(bytes) != nullptr; }) - PeakOf([] { return true; });
}

// Small objects of the binary form may take more than their few bytes of the file, but no more than
// what they are.
TEST(PropertyList, TakesLittleMemory) {
  if (kIsSanitized) GTEST_SKIP() << "The sanitizers take memory of their own";
  struct {
    char const *name, *head, *piece, *foot;
    double objects;  // of the root's references in the binary form; negative to leave it out
  } const rows[] = {
      {"settings", "<array>",
       "<dict>\n\t<key>Label</key>\n\t<string>org.example.service</string>\n"
       "\t<key>KeepAlive</key>\n\t<true/>\n\t<key>Nice</key>\n"
       "\t<integer>20000</integer>\n</dict>\n",
       "</array>", -1},
      {"one string", "<string>", "text ", "</string>", -1},
      {"one string with one accent", "<string>\xC3\xA9", "text ", "</string>", -1},
      {"data", "<data>", "AAAA\n", "</data>", -1},
      {"empty containers", "<array>", "<array/><dict/>", "</array>", -1},
      {"small numbers", "<array>", "<integer>1</integer>", "</array>", -1},
      {"numbers", "<array>", "<integer>#</integer>", "</array>", 1},
      {"booleans", "<array>", "<true/>", "</array>", 0},
      {"short keys", "<dict>", "<key>#</key><true/>", "</dict>", 0.5},
      {"short reals", "<array>", "<real>#</real>", "</array>", -1},
      {"short strings", "<array>", "<string>#</string>", "</array>", 1},
      {"no data", "<array>", "<data/>", "</array>", -1},
      {"a byte of data", "<array>", "<data>AA==</data>", "</array>", -1},
      {"arrays of one", "<array>", "<array><true/></array>", "</array>", -1},
  };
  for (auto const& row : rows) {
    SCOPED_TRACE(row.name);
    std::string const text = Repeated(row.head, row.piece, row.foot);
    double const grown = PeakOfReading(text);
    EXPECT_GT(grown, 0);
    EXPECT_LE(grown, 4 * static_cast<double>(text.size()));
    if (row.objects < 0) continue;
    OwnedObject data(CFPropertyListCreateData(nullptr, Parsed(text).get(),
                                              kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
    std::string const bytes = BytesOfData(data.get());
    data.reset();
    // Each element ends with the help of one slash.
    auto const references = static_cast<double>(std::count(text.begin(), text.end(), '/'));
    double const of_binary = PeakOfReading(bytes);
    EXPECT_GT(of_binary, 0);
    EXPECT_LE(of_binary,
              4 * static_cast<double>(bytes.size()) + references * (8 + 48 * row.objects));
  }
}

}  // namespace
