// Files: codes, what the catalogue knows, and paths.

#include <filesystem>

#include "inspectors/files/file_attributes.h"
#include "inspectors/files/file_code.h"
#include "inspectors/files/file_path.h"
#include "inspectors/plist/osx_array.h"
#include "inspectors/plist/osx_dictionary.h"
#include "portable/core_foundation/errors.h"
#include "portable_inspectors/filesystem_object.h"
#include "tests/inspectors/asking.h"
#include "tests/machine/apple_double_text.h"
#include "tests/support/temporary_folder.h"

namespace {

using namespace std::string_literals;

TEST(FileCodes, AreAnyFourBytes) {
  std::pair<std::string, std::uint32_t> const cases[] = {
      {"APPL", 0x4150504C}, {"appl", 0x6170706C}, {"\0\xff\x80\x01"s, 0x00FF8001}};
  for (auto const& [text, code] : cases) {
    inspector_string const name = Name(text);
    EXPECT_EQ(Ask<file_type>("file type", "", nullptr, &name).code, code);
    EXPECT_EQ(Ask<file_signature>("file signature", "", nullptr, &name).code, code);
    EXPECT_TRUE(file_type_of(Bytes(text), 4) == file_type{code});
    EXPECT_FALSE(file_signature_of(Bytes(text), 4) == file_signature{code + 1});
  }
  for (unsigned long const length : {0UL, 3UL, 5UL}) {
    EXPECT_THROW(file_type_of(Bytes("abcde"), length), NoSuchObject);
    EXPECT_THROW(file_signature_of(Bytes("abcde"), length), NoSuchObject);
  }
  for (char const* type : {"file type", "file signature"}) {
    EXPECT_NE(RecordingEvaluator::Instance().Find("Binary_Operator", "6", type), nullptr) << type;
  }
}

class Files : public testing::Test {
 protected:
  file Make(std::string const& name, std::string const& content) const {
    folder_.Write(name, content);
    return Find(name);
  }
  file Find(std::string const& name) const {
    std::string const path = folder_.Path(name);
    return MacintoshPlatform::posix_file_of_world(Bytes(path), path.size());
  }

  gatotu::tests::TemporaryFolder folder_;
};

TEST_F(Files, TellTheirFinderFlagsAndForks) {
  struct {
    std::uint16_t flags;
    std::uint32_t bytes, resource_bytes;
    char const* answers;
  } const cases[] = {{0, 0, 1000, "true, false, false"},
                     {0x4000, 3, 1, "false, false, false"},
                     {0x8000, 3, 7, "true, true, false"},
                     {0x0800, 3, 7, "true, false, true"},
                     {0xB7FF & ~0x8800, 3, 7, "true, false, false"}};
  for (auto const& row : cases) {
    Make("._x",
         AppleDoubleText({{9, "TEXTttxt" + BigEndianText(row.flags, 2) + std::string(22, '\0')},
                          {2, std::string(row.resource_bytes, 'r')}}));
    file const file = Make("x", std::string(row.bytes, 'd'));
    SCOPED_TRACE(row.flags);
    EXPECT_EQ(Answers({"visible", "alias", "stationery"}, "file", &file), row.answers);
    EXPECT_EQ(Answer("locked", "file", &file), "false");
    auto const data_fork = Ask<datafork>("data fork", "file", &file);
    auto const resource_fork = Ask<resfork>("resource fork", "file", &file);
    for (char const* phrase : {"length", "size"}) {
      EXPECT_EQ(Ask<integer>(phrase, "datafork", &data_fork), row.bytes);
      EXPECT_EQ(Ask<integer>(phrase, "resfork", &resource_fork), row.resource_bytes);
      EXPECT_EQ(Ask<integer>(phrase, "file", &file), row.bytes + row.resource_bytes);
    }
  }
}

TEST_F(Files, WithoutFinderInformationAreJustVisible) {
  Make("y", "abcd");
  ::chmod(folder_.Path("y").c_str(), 0444);
  file const file = Find("y");
  EXPECT_EQ(Answers({"locked", "visible", "alias", "stationery", "length"}, "file", &file),
            "true, true, false, false, 4");
  EXPECT_EQ(res_length_of(resfork_of(file)), 0);
}

TEST_F(Files, HavePathsInBothNotationsAndTheReportEncoding) {
  // No setting names an encoding here: it is Windows Latin-1.
  file const file = Make("a:b caf\u00e9 \u2603", "");
  std::string const posix = folder_.Path() + "/a:b caf\xe9 ?";
  EXPECT_EQ(Answers({"posix path", "pathname"}, "filesystem object", &file), posix + ", " + posix);
  EXPECT_EQ(Shown(AsString(file)), posix);
  EXPECT_NE(RecordingEvaluator::Instance().Find("Cast", "string", "filesystem object"), nullptr);
  EXPECT_THAT(
      Answer("hfs path", "filesystem object", &file),
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
  std::filesystem::remove(folder_.Path("array"));
  EXPECT_THROW(array_of_file(array), NoSuchObject);
}

}  // namespace
