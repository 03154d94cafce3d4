// Property lists that are damaged at random, and what reading takes.
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>
#include <string>

#include "tests/frameworks/property_list_print.h"
#include "tests/support/binary_list_text.h"
#include "tests/support/sanitized.h"
#include "tests/support/temporary_folder.h"

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
  auto const below = [&](std::size_t bound) {
    return bound == 0 ? 0 : static_cast<std::size_t>(random()) % bound;
  };
  std::size_t const at = below(text.size());
  if (text.empty()) return;
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
  std::string const text = kSources[0];
  EXPECT_EQ(PrintParsed(text)[0], '{');
  for (std::size_t size = 1; size < text.size(); ++size) {
    EXPECT_EQ(PrintParsed(text.substr(0, size))[0], '!') << size;
  }
}

std::string Repeated(std::string_view head, std::string_view piece, std::string_view foot) {
  std::string text(head);
  while (text.size() < 8'000'000) text += piece;
  return text += foot;
}

// The piece with another number of six digits in place of its "#" each time.
std::string Numbered(std::string_view head, std::string_view piece, std::string_view foot) {
  std::string text(head);
  std::size_t const mark = piece.find('#');
  for (int number = 100'000; text.size() < 8'000'000; ++number) {
    text.append(piece.substr(0, mark)) += std::to_string(number);
    text += piece.substr(mark + 1);
  }
  return text += foot;
}

double Count(std::string_view text, std::string_view mark) {
  double count = 0;
  for (auto at = text.find(mark); at != text.npos; at = text.find(mark, at + 1)) ++count;
  return count;
}

// What is made in a process of its own.
template <typename Make>
std::string MadeByChild(Make&& make) {
  // What the heap holds in reserve would else be taken before the peak rises.
  malloc_trim(0);
  gatotu::tests::TemporaryFolder const folder;
  pid_t const child = fork();
  if (child == 0) {
    folder.Write("made", make());
    _exit(0);
  }
  waitpid(child, nullptr, 0);
  return folder.Read("made");
}

double Peak() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) * 1024;
}

// By how many bytes reading raises the peak, the copy that the reader is given among them.
double PeakOfReading(std::string const& bytes) {
  std::string const grown = MadeByChild([&] {
    double const before = Peak();
    return Parsed(bytes) == nullptr ? "" : std::to_string(Peak() - before);
  });
  return grown.empty() ? -1 : std::stod(grown);
}

TEST(XmlPropertyList, TakesAtMostFourTimesItsSize) {
  if (kIsSanitized) GTEST_SKIP() << "The sanitizers take memory of their own";
  std::pair<char const*, std::string> const rows[] = {
      {"settings", Repeated("<array>",
                            "<dict>\n\t<key>Label</key>\n\t<string>org.example.service</string>\n"
                            "\t<key>KeepAlive</key>\n\t<true/>\n\t<key>Nice</key>\n"
                            "\t<integer>20000</integer>\n</dict>\n",
                            "</array>")},
      {"one string", Repeated("<string>", "text ", "</string>")},
      {"one string with one accent", Repeated("<string>\xC3\xA9", "text ", "</string>")},
      {"data", Repeated("<data>", "AAAA\n", "</data>")},
      {"empty containers", Repeated("<array>", "<array/><dict/>", "</array>")},
      {"small numbers", Repeated("<array>", "<integer>1</integer>", "</array>")},
      {"booleans", Repeated("<array>", "<true/>", "</array>")},
      {"short keys", Numbered("<dict>", "<key>#</key><true/>", "</dict>")},
      {"short reals", Numbered("<array>", "<real>#</real>", "</array>")},
      {"short strings", Numbered("<array>", "<string>#</string>", "</array>")},
      {"no data", Repeated("<array>", "<data/>", "</array>")},
      {"a byte of data", Repeated("<array>", "<data>AA==</data>", "</array>")},
      {"arrays of one", Repeated("<array>", "<array><true/></array>", "</array>")},
  };
  for (auto const& [name, text] : rows) {
    double const grown = PeakOfReading(text);
    EXPECT_GT(grown, 0) << name;
    EXPECT_LE(grown, 4 * static_cast<double>(text.size())) << name;
  }
}

// Small objects may take more than their few bytes of the file, but no more than what they are.
TEST(BinaryPropertyList, TakesLittleForEachObjectAndReference) {
  if (kIsSanitized) GTEST_SKIP() << "The sanitizers take memory of their own";
  struct {
    char const* name;
    std::string text;
    double objects;  // Written once each, of the root's references.
  } const rows[] = {
      {"booleans", Repeated("<array>", "<true/><false/>", "</array>"), 0},
      {"integers", Numbered("<array>", "<integer>#</integer>", "</array>"), 1},
      {"short strings", Numbered("<array>", "<string>#</string>", "</array>"), 1},
      {"short keys", Numbered("<dict>", "<key>#</key><true/>", "</dict>"), 0.5},
  };
  for (auto const& row : rows) {
    std::string const bytes = MadeByChild([&] {
      OwnedObject const root = Parsed(row.text);
      OwnedObject const data(CFPropertyListCreateData(
          nullptr, root.get(), kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
      return BytesOfData(data.get());
    });
    // Each element ends in one of the two.
    double const references = Count(row.text, "</") + Count(row.text, "/>");
    double const grown = PeakOfReading(bytes);
    EXPECT_GT(grown, 0) << row.name;
    EXPECT_LE(grown, 4 * static_cast<double>(bytes.size()) + references * (8 + 48 * row.objects))
        << row.name;
  }
}

}  // namespace
