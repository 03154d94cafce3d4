// A macOS volume that was never prepared for being asked.

#include "tests/host/child_process.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

std::string List(std::string const& content) {
  return "<plist><dict>" + content + "</dict></plist>";
}

class MacVolume : public testing::Test {
 protected:
  MacVolume() {
    volume_.Write("System/Library/CoreServices/SystemVersion.plist",
                  List("<key>ProductName</key><string>Mac OS X</string>"
                       "<key>ProductVersion</key><string>10.4.11</string>"));
    volume_.Write("Users/x/Library/Preferences/com.example.notes.plist",
                  List("<key>Lines</key><integer>42</integer>"));
    volume_.Write("Applications/Notes.app/Contents/Info.plist",
                  List("<key>CFBundleVersion</key><string>1.2.3b4</string>"));
    volume_.Write("Applications/Notes.app/Contents/PkgInfo", "APPLnote");
    volume_.MakeFolder("Library/Fonts");
    volume_.Write("secret/inside", "inside");
    volume_.Link("Library/absolute", "/secret/inside");
    volume_.Link("Library/out", "../../../../../../etc/hostname");
  }

  ProcessResult Ask(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"--machine", volume_.Path()});
    return Gatotu(std::move(arguments));
  }

  TemporaryFolder volume_;
};

struct {
  std::string expression, answer;
} const kAnswers[] = {
    {"pathname of fonts folder of local domain", "/Library/Fonts"},
    {"pathname of preferences folder of user domain", "/Users/x/Library/Preferences"},
    {"integer \"Lines\" of preference \"com.example.notes\"", "42"},
    {"version of bundle of folder \"/Applications/Notes.app\"", "1.2.3"},
    {"type of bundle of folder \"/Applications/Notes.app\" = file type \"APPL\"", "true"},
    {"exists bundle of folder \"/Applications\"", "false"},
    {"lines of file \"/Library/absolute\"", "inside"},
    {"exists file \"/Library/out\"", "false"},
    {"exists file \"/etc/hostname\"", "false"},
    {"names of files of folder \"/Users/x/Library/Preferences\"", "com.example.notes.plist"},
};

TEST_F(MacVolume, AnswersFromItsFiles) {
  for (auto const& row : kAnswers) {
    EXPECT_THAT(Ask({"--user", "x", row.expression}), Ends(0, row.answer + "\n")) << row.expression;
  }
}

TEST_F(MacVolume, CanBeCapturedWithItsUser) {
  TemporaryFolder const folder;
  std::vector<std::string> arguments = {"--user", "x", "capture", folder.Path("c"), "--for"};
  for (auto const& row : kAnswers) arguments.push_back(row.expression);
  std::string const missing = "string \"none\" of preference \"com.example.notes\"";
  arguments.push_back(missing);
  EXPECT_EQ(Ask(arguments).status, 0);
  for (auto const& row : kAnswers) {
    EXPECT_THAT(Gatotu({"--machine", folder.Path("c"), row.expression}), Ends(0, row.answer + "\n"))
        << row.expression;
  }
  // The home was recorded, so nobody is missed.
  EXPECT_EQ(Gatotu({"--machine", folder.Path("c"), missing}).errors.find("user was"),
            std::string::npos);
}

TEST_F(MacVolume, TakesNothingFromTheMachineThatAsks) {
  for (char const* expression : {"hostname", "now", "name of process 1", "physical ram",
                                 "value of variable \"PATH\" of environment",
                                 "pathname of preferences folder of user domain"}) {
    EXPECT_THAT(Ask({expression}), Ends(1, "")) << expression;
  }
}

}  // namespace
}  // namespace gatotu::tests
