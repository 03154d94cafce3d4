// Files: codes, what the catalogue knows, and paths.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "evaluator/plugin/exceptions.h"
#include "inspectors/files/file_attributes.h"
#include "inspectors/files/file_code.h"
#include "inspectors/files/file_path.h"
#include "inspectors/plist/osx_array.h"
#include "inspectors/plist/osx_dictionary.h"
#include "portable/core_foundation/errors.h"
#include "portable_inspectors/filesystem_object.h"

namespace {

using namespace std::string_literals;

unsigned char const* Bytes(std::string const& text) {
  return reinterpret_cast<unsigned char const*>(text.data());
}

TEST(FileCodes, AreAnyFourBytes) {
  struct {
    std::string text;
    std::uint32_t code;
  } const cases[] = {{"APPL", 0x4150504C}, {"appl", 0x6170706C}, {"\0\xff\x80\x01"s, 0x00FF8001}};
  for (auto const& row : cases) {
    EXPECT_EQ(file_type_of(Bytes(row.text), 4).code, row.code);
    EXPECT_EQ(file_signature_of(Bytes(row.text), 4).code, row.code);
    EXPECT_TRUE(file_type_of(Bytes(row.text), 4) == file_type{row.code});
    EXPECT_FALSE(file_signature_of(Bytes(row.text), 4) == file_signature{row.code + 1});
  }
  for (unsigned long const length : {0UL, 3UL, 5UL}) {
    EXPECT_THROW(file_type_of(Bytes("abcde"), length), NoSuchObject);
    EXPECT_THROW(file_signature_of(Bytes("abcde"), length), NoSuchObject);
  }
}

class Files : public testing::Test {
 protected:
  Files() {
    std::string pattern = std::filesystem::temp_directory_path() / "gatotu-files-XXXXXX";
    folder_ = ::mkdtemp(pattern.data());
  }
  ~Files() override { std::filesystem::remove_all(folder_); }

  file Make(std::string const& name, std::string const& content) const {
    std::ofstream(folder_ / name) << content;
    return Find(name);
  }
  file Find(std::string const& name) const {
    std::string const path = folder_ / name;
    return MacintoshPlatform::posix_file_of_world(Bytes(path), path.size());
  }

  std::filesystem::path folder_;
};

std::string Word(std::uint32_t value, int bytes) {
  std::string word;
  while (bytes-- > 0) word += static_cast<char>(value >> (8 * bytes));
  return word;
}

// An AppleDouble companion: Finder information with these flags, and a resource fork.
std::string Companion(std::uint16_t flags, std::uint32_t resource_bytes) {
  std::uint32_t const start = 26 + 2 * 12;
  return Word(0x00051607, 4) + Word(0x00020000, 4) + std::string(16, '\0') + Word(2, 2) +
         Word(9, 4) + Word(start, 4) + Word(32, 4) +                   // Finder information
         Word(2, 4) + Word(start + 32, 4) + Word(resource_bytes, 4) +  // resource fork
         "TEXTttxt" + Word(flags, 2) + std::string(22, '\0') + std::string(resource_bytes, 'r');
}

TEST_F(Files, TellTheirFinderFlagsAndForks) {
  struct {
    std::uint16_t flags;
    bool visible, alias, stationery;
    std::uint32_t resource_bytes;
  } const cases[] = {{0, true, false, false, 1000},
                     {0x4000, false, false, false, 1},
                     {0x8000, true, true, false, 7},
                     {0x0800, true, false, true, 7},
                     {0xB7FF & ~0x8800, true, false, false, 7},
                     {0xFFFF, false, true, true, 7}};
  for (auto const& row : cases) {
    Make("._x", Companion(row.flags, row.resource_bytes));
    file const file = Make("x", row.flags == 0 ? "" : "abc");
    integer const data = row.flags == 0 ? 0 : 3;
    SCOPED_TRACE(row.flags);
    EXPECT_EQ(visible_of(file), row.visible);
    EXPECT_EQ(alias_of(file), row.alias);
    EXPECT_EQ(stationery_of(file), row.stationery);
    EXPECT_FALSE(locked_of(file));
    EXPECT_EQ(data_length_of(datafork_of(file)), data);
    EXPECT_EQ(res_length_of(resfork_of(file)), row.resource_bytes);
    EXPECT_EQ(length_of(file), data + row.resource_bytes);
  }
}

TEST_F(Files, WithoutFinderInformationAreJustVisible) {
  Make("y", "abcd");
  ::chmod((folder_ / "y").c_str(), 0444);
  file const file = Find("y");
  EXPECT_TRUE(locked_of(file));
  EXPECT_TRUE(visible_of(file));
  EXPECT_FALSE(alias_of(file) || stationery_of(file));
  EXPECT_EQ(length_of(file), 4);
  EXPECT_EQ(res_length_of(resfork_of(file)), 0);
}

std::string Shown(inspector_string const& text) {
  return {reinterpret_cast<char const*>(text.start), text.length};
}

TEST_F(Files, HavePathsInBothNotationsAndTheReportEncoding) {
  // No setting names an encoding here: it is Windows Latin-1.
  file const file = Make("a:b caf\u00e9 \u2603", "");
  std::string const posix = folder_.string() + "/a:b caf\xe9 ?";
  EXPECT_EQ(Shown(POSIXPathOfObject(Of(), file)), posix);
  EXPECT_EQ(Shown(AsString(file)), posix);
  EXPECT_THAT(
      Shown(HFSPathOfObject(Of(), file)),
      testing::AllOf(testing::EndsWith(":a/b caf\xe9 ?"), testing::Not(testing::StartsWith(":"))));
}

TEST_F(Files, OpenAsTheKindOfListTheyAre) {
  file const array = Make("array", "<plist><array><true/></array></plist>");
  file const dictionary = Make("dictionary", "<plist><dict/></plist>");
  file const text = Make("text", "<plist><arr");
  EXPECT_EQ(size_of_array(array_of_file(array)), 1);
  EXPECT_EQ(CFGetRetainCount(array_of_file(array).Array()), 1);
  EXPECT_EQ(size_of_dictionary(dictionary_of_file(dictionary)), 0);
  EXPECT_EQ(CFGetRetainCount(dictionary_of_file(dictionary).Dictionary()), 1);
  for (file const* other : {&dictionary, &text}) {
    EXPECT_THROW(array_of_file(*other), ArrayCreateFromXMLDataFailed);
  }
  for (file const* other : {&array, &text}) {
    EXPECT_THROW(dictionary_of_file(*other), DictionaryCreateFromXMLDataFailed);
  }
  std::filesystem::remove(folder_ / "array");
  EXPECT_THROW(array_of_file(array), NoSuchObject);
}

}  // namespace
