// What is in a file, against the strings of the vocabulary and against other programs.

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>

#include "program_output.h"
#include "temporary_folder.h"

namespace {

constexpr std::size_t kBufferSize = 64 * 1024;

// A file's lines are read piece by piece, a string's are not.
TEST(FileLines, AreThoseOfTheContent) {
  std::string const near_end(kBufferSize - 1, 'x');
  std::string mixed;
  std::mt19937 random(7);
  while (mixed.size() < 3 * kBufferSize) mixed += "abcdefg\n\r\n"[random() % 10];
  TemporaryFolder folder;
  for (std::string const& content :
       {std::string(), std::string("\n"), std::string("\r"), std::string("a"), std::string("a\n"),
        std::string("a\r\nb\rc\n\rd\r\n\r\ne"), near_end + "\r\nb", near_end + "\rb",
        near_end + "\r", near_end + "\nb", near_end + "x\r\nb", std::string(300'000, 'y') + "\nz",
        mixed}) {
    folder.Write("f", content);
    // Not shown when they differ: there are too many of them.
    EXPECT_TRUE(folder.Ask(R"(lines of file "%/f")") ==
                folder.Ask(R"(lines of content of file "%/f")"))
        << content.size() << " bytes: " << content.substr(0, 20);
    EXPECT_EQ(
        folder.Ask(
            R"((length of content of it, number of lines of it = number of lines of content of it) of file "%/f")"),
        std::to_string(content.size()) + ", true");
  }
  folder.Write("f", "one\ntwo\n\nfour");
  EXPECT_EQ(
      folder.Ask(
          R"((exists line 0 of it, line 1 of it, line 4 of it, exists line 5 of it) of file "%/f")"),
      "false, one, four, false");
}

TEST(FileDigests, AreThoseOfTheProgramsForThem) {
  TemporaryFolder folder;
  std::string bytes;
  std::mt19937 random(7);
  while (bytes.size() < 300'000) bytes += static_cast<char>(random());
  for (std::size_t size : {0, 1, 131'072, 300'000}) {
    folder.Write("f", bytes.substr(0, size));
    for (std::string const algorithm : {"md5", "sha1", "sha256"}) {
      EXPECT_EQ(folder.Ask(algorithm + R"( of file "%/f")"),
                FirstLineOf(algorithm + "sum " + folder.Path("f") + " | cut -d' ' -f1"));
    }
  }
}

// Nothing here may hang.
TEST(FileContent, IsThatOfRegularFilesOnly) {
  TemporaryFolder folder;
  folder.MakeFifo("fifo");
  folder.Link("to fifo", "fifo");
  for (char const* path : {"%/fifo", "%/to fifo", "/dev/zero", "/dev/null"}) {
    std::string const questions =
        "(exists content of it, exists line 1 of it, number of lines of it, exists sha1 of it) of "
        "file ";
    EXPECT_EQ(folder.Ask(questions + '"' + path + '"'), "false, false, 0, false") << path;
  }
  folder.Write("sparse");
  std::filesystem::resize_file(folder.Path("sparse"), std::uintmax_t{5} << 30);
  EXPECT_THAT(folder.Ask(R"(content of file "%/sparse")"), testing::HasSubstr("FileTooLarge"));
  // Files without a size have content all the same.
  EXPECT_EQ(
      Answer(R"(content of file "/proc/self/comm" = line 1 of file "/proc/self/comm" & "\n")"),
      "true");
}

}  // namespace
