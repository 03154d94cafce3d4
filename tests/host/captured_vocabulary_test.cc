// Everything that the vocabulary offers, asked of a machine and of its capture.
#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <regex>

#include "tests/host/child_process.h"
#include "tests/host/temporary_folder.h"
#include "tests/host/vocabulary_expressions.h"

namespace gatotu::tests {
namespace {

// What changes by itself while it is compared.
struct {
  char const *pattern, *reason;
} const kRestless[] = {
    {"\\bnows?\\b|uptime", "the clock goes on"},
    {"process", "processes come and go"},
    {"(space|count|percent)s? of \\(?(drive|filesystem|volume)", "others write to the disks"},
    {"temporary items|temp folder|\\ba?shm\\b", "others' files come and go"},
    {"(access|change|modification) time", "reading and writing by others changes it"},
};

bool IsRestless(std::string const& expression) {
  static std::regex const restless = [] {
    std::string pattern;
    for (auto const& row : kRestless)
      pattern += (pattern.empty() ? "" : "|") + std::string(row.pattern);
    return std::regex(pattern);
  }();
  return std::regex_search(expression, restless);
}

std::string Joined(std::vector<std::string> const& lines) {
  std::string text;
  for (std::string const& line : lines) text += line + "\n";
  return text;
}

// Values, and what kind of error there was: why there is no value may be said in other words.
using Answers = std::map<std::string, std::pair<nlohmann::json, std::string>>;

Answers AnswersOf(std::string const& machine, std::vector<std::string> const& expressions) {
  Answers answers;
  ProcessResult const run =
      Gatotu({"--machine", machine, "--time-limit", "5m", "--format", "json", "--file", "-"},
             Joined(expressions));
  for (std::string const& line : Lines(run.output)) {
    auto const answer = nlohmann::json::parse(line);
    std::string const error = answer.contains("error") ? answer["error"]["code"] : "";
    answers[answer["expression"]] = {answer["values"], error};
  }
  EXPECT_EQ(answers.size(), expressions.size()) << run.errors.substr(0, 1000);
  return answers;
}

// What a machine can be asked at all, and lasts.
std::vector<std::string> Askable(Answers const& answers) {
  std::vector<std::string> expressions;
  for (auto const& [expression, answer] : answers) {
    bool const is_evaluated = answer.second.empty() || answer.second == "no-such-object" ||
                              answer.second == "not-unique" || answer.second == "inspector-failed";
    if (is_evaluated && !IsRestless(expression)) expressions.push_back(expression);
  }
  return expressions;
}

std::vector<std::string> Unique(std::vector<std::string> expressions) {
  std::ranges::sort(expressions);
  expressions.erase(std::ranges::unique(expressions).begin(), expressions.end());
  return expressions;
}

// What holds of `is_asked` is compared between the machine and its capture.
template <typename IsAsked>
void CompareWithCapture(std::string const& machine, bool is_of_everything, IsAsked&& is_asked) {
  TemporaryFolder const folder;
  std::string const capture = folder.Path("capture");
  std::vector<std::string> asked = Askable(AnswersOf(machine, Unique(VocabularyExpressions())));
  std::erase_if(asked, [&](std::string const& expression) { return !is_asked(expression); });
  ASSERT_GT(asked.size(), 1000U);
  std::vector<std::string> arguments = {"--machine", machine,        "capture",
                                        capture,     "--time-limit", "5m"};
  if (!is_of_everything) arguments.insert(arguments.end(), {"--file", "-"});
  ProcessResult const made = Gatotu(arguments, Joined(asked));
  ASSERT_EQ(made.status, 0) << made.errors.substr(0, 1000);
  Answers const before = AnswersOf(machine, asked), after = AnswersOf(capture, asked);
  std::size_t answered = 0, differing = 0;
  for (auto const& [expression, answer] : before) {
    if (!answer.first.empty()) ++answered;
    if (answer == after.at(expression) || ++differing > 20) continue;
    ADD_FAILURE() << expression << "\n  " << answer.first << answer.second << "\n  "
                  << after.at(expression).first << after.at(expression).second;
  }
  EXPECT_EQ(differing, 0U);
  EXPECT_GT(answered, asked.size() / 20);
}

bool Always(std::string const&) { return true; }

// Such a capture has no contents, neither of files nor of folders.
bool IsInNoFile(std::string const& expression) {
  static std::regex const inside(
      "^(array|content|dictionar|file |files |filesystem "
      "object|folder|item|line|md5|sha|size|length)"
      "|\"/etc|\"a\"|resource fork|data fork|bundle|applications? of");
  return !std::regex_search(expression, inside);
}

TEST(CapturedVocabulary, AnswersAsTheLiveMachineDid) { CompareWithCapture("live", false, Always); }

TEST(CapturedVocabulary, OfEverythingAnswersAllThatLiesInNoFile) {
  CompareWithCapture("live", true, IsInNoFile);
}

TEST(CapturedVocabulary, AnswersAsAMacOSVolumeDid) {
  TemporaryFolder volume;
  auto const list = [](std::string const& content) {
    return "<plist><dict>" + content + "</dict></plist>";
  };
  volume.Write("System/Library/CoreServices/SystemVersion.plist",
               list("<key>ProductName</key><string>Mac OS X</string>"
                    "<key>ProductVersion</key><string>10.4.11</string>"));
  volume.Write("Library/StartupItems/Web/StartupParameters.plist", list(""));
  volume.Write("Applications/Notes.app/Contents/Info.plist",
               list("<key>CFBundleVersion</key><string>1.2.3b4</string>"));
  volume.Write("etc/passwd", "ann:x:501:20::/Users/ann:/bin/sh\n");
  volume.MakeFolder("Library/Fonts");
  volume.MakeFolder("Users/ann/Library/Preferences");
  CompareWithCapture(volume.Path(), false, Always);
}

}  // namespace
}  // namespace gatotu::tests
