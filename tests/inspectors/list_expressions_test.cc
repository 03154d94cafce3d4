// Property lists in property lists, asked of the evaluator itself.
#include "tests/portable_inspectors/answers.h"
#include "tests/support/temporary_folder.h"

namespace {

constexpr char kNone[] = "no such object";

TEST(PropertyLists, AreWalkedThrough) {
  gatotu::tests::TemporaryFolder const folder;
  folder.Write("list",
               "<plist><array><array><string>b</string><string>a</string></array><array/>"
               "<dict><key>k</key><string>1</string><key>\u2603</key><string>2</string></dict>"
               "<dict/><dict><key>l</key><array><true/></array><key>d</key><dict/>"
               "<key>caf\u00e9</key><integer>1</integer></dict>"
               "</array></plist>");
  std::string const in_order = "concatenation \",\" of unique values of ";
  std::pair<std::string, char const*> const cases[] = {
      {"(sizes of arrays of it; sizes of dictionaries of it) of values", "2\n0\n2\n0\n3"},
      {"size of array 0", "2"},
      {"strings of values of array 0", "b\na"},
      {"string 1 of array 0", "a"},
      {"string 2 of array 0", kNone},
      {"string 2147483648 of array 0", kNone},
      {"string 4294967296 of array 0", kNone},
      {"string 0 of array 1", kNone},
      {"number of values of array 1", "0"},
      {"size of array 2", kNone},
      {"size of dictionary 2", "2"},
      {in_order + "keys of dictionary 2", "?,k"},
      {in_order + "(key of it & \"=\" & string of value of it) of entries of dictionary 2",
       "?=2,k=1"},
      {"(size of it, number of keys of it, number of entries of it) of dictionary 3", "0, 0, 0"},
      {"(size of it, boolean 0 of it) of array \"l\" of dictionary 4", "1, true"},
      {"size of dictionary \"d\" of dictionary 4", "0"},
      {"integer \"caf\x8e\" of dictionary 4", "1"},
      {"integer \"Caf\x8e\" of dictionary 4", kNone},
      {"integer \"caf\xc3\xa9\" of dictionary 4", kNone},
      {"integer \"\" of dictionary 4", kNone},
      {"integer \"caf\x8e\\x00\" of dictionary 4", kNone},
  };
  for (auto const& [question, answer] : cases) {
    EXPECT_EQ(Answer(question + " of array of file \"" + folder.Path("list") + "\""), answer)
        << question;
  }
}

}  // namespace
