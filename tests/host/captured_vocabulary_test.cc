// Everything that the vocabulary offers, asked of a machine and of its capture.

#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "tests/host/child_process.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

// What changes by itself while it is compared.
constexpr char kRestless[] =
    "\\bnows?\\b|uptime"                                         // the clock goes on
    "|sample time"                                               // records are read anew
    "|process"                                                   // come and go
    "|(space|count|percent)s? of \\(?(drive|filesystem|volume)"  // others write to the disks
    "|temporary items|temp folder"                               // others' files come and go
    "|(access|change|modification) time";                        // others read and write
// What a capture of everything leaves alone: contents, of folders too, and what is asked by name.
constexpr char kInFiles[] =
    "^(array|content|dictionar|file |files |filesystem object|folder|item|line|md5|sha|size|length)"
    "|\"/etc|\"a\"|resource fork|data fork|bundle";

// By the property; of others any will do.
std::map<std::string, std::string> const kSamples = {
    {"file", "\"/etc/passwd\""},
    {"filesystem object", "\"/etc/passwd\""},
    {"folder", "\"/etc\""},
    {"gestalt", "\"sysv\""},
    {"integer below", "3"},
    {"node", "\"IODeviceTree:/\""},
    {"volume", "\"/\""},
    {"variable", "\"HOME\""},
    {"environment variable", "\"HOME\""},
};
// What is computed of a value, whatever machine it came from.
std::set<std::string> const kPlain = {"boolean", "hertz",         "integer",   "match",  "string",
                                      "time",    "time interval", "time zone", "version"};

// Every property of the world in singular and plural, and of that every property. What is no file
// or folder is followed one step further.
class Questions {
 public:
  Questions() {
    for (std::string const& line : Lines(Gatotu({"vocabulary", "--format", "json"}).output)) {
      auto const entry = nlohmann::json::parse(line);
      if (entry["kind"] == "type") bases_[entry["singular"]] = entry["object"];
      bool const is_property = entry["kind"] == "property" || entry["kind"] == "iterated";
      if (is_property) properties_[entry["object"]].push_back(entry);
    }
    for (auto const& property : properties_[""]) Add(property, "", 2);
  }
  std::set<std::string> const& all() const { return expressions_; }

 private:
  void Add(nlohmann::json const& property, std::string const& of, int depth) {
    std::string const singular = property["singular"], result = property["result"];
    // Walks through whole trees are for those who ask for them.
    std::set<std::string> const walks = {"application", "descendant"};
    if (walks.contains(singular) || singular.starts_with("find ")) return;
    std::string parameter;
    if (property["parameter"] != "") {
      auto const sample = kSamples.find(singular);
      parameter = property["parameter"] == "integer" ? " 0" : " \"a\"";
      if (sample != kSamples.end()) parameter = " " + sample->second;
    }
    std::vector<std::string> types;
    for (std::string type = result; !type.empty(); type = bases_[type]) types.push_back(type);
    bool const is_wide = result == "domain" || types.back() == "filesystem object";
    for (std::string const& name : {singular, property["plural"].get<std::string>()}) {
      if (name.empty()) continue;
      std::string const expression = name + parameter + (of.empty() ? "" : " of (" + of + ")");
      expressions_.insert(expression);
      if (depth == 0 || kPlain.contains(result)) continue;
      for (std::string const& type : types) {
        for (auto const& member : properties_[type])
          Add(member, expression, is_wide ? 0 : depth - 1);
      }
    }
  }

  std::map<std::string, std::vector<nlohmann::json>> properties_;
  std::map<std::string, std::string> bases_;
  std::set<std::string> expressions_;
};

// Values, and what kind of error there was: why there is no value may be said in other words.
using Answers = std::map<std::string, std::pair<nlohmann::json, std::string>>;

std::string Joined(std::set<std::string> const& lines) {
  std::string text;
  for (std::string const& line : lines) text += line + "\n";
  return text;
}

// Directory records that were read before anything is asked, since nobody waits for them then.
class KeptRecords {
 public:
  KeptRecords() {
    Gatotu({"--setting", Setting(), "--wait-for-directory", "10s",
            "exists local computer of active directory", "exists local users of active directory"});
  }
  std::string Setting() const { return "Directory:CacheFolder=" + folder_.Path("records"); }

 private:
  TemporaryFolder const folder_;
};

Answers AnswersOf(std::string const& machine, std::set<std::string> const& expressions) {
  static KeptRecords const records;
  Answers answers;
  ProcessResult const run = Gatotu({"--setting", records.Setting(), "--machine", machine,
                                    "--time-limit", "5m", "--format", "json", "--file", "-"},
                                   Joined(expressions));
  for (std::string const& line : Lines(run.output)) {
    auto const answer = nlohmann::json::parse(line);
    std::string const error = answer.contains("error") ? answer["error"]["code"] : "";
    answers[answer["expression"]] = {answer.value("values", nlohmann::json::array()), error};
  }
  EXPECT_EQ(answers.size(), expressions.size()) << run.errors.substr(0, 1000);
  return answers;
}

// Without what is refused of any machine, and what is `left_out`.
std::set<std::string> Askable(std::string const& machine, std::string const& left_out) {
  std::set<std::string> const evaluated = {"", "no-such-object", "not-unique", "inspector-failed"};
  std::regex const pattern(left_out);
  std::set<std::string> expressions;
  for (auto const& [expression, answer] : AnswersOf(machine, Questions().all())) {
    bool const is_asked =
        evaluated.contains(answer.second) && !std::regex_search(expression, pattern);
    if (is_asked) expressions.insert(expression);
  }
  return expressions;
}

void CompareWithCapture(std::string const& machine, std::string const& left_out,
                        std::vector<std::string> const& options) {
  TemporaryFolder const folder;
  std::string const capture = folder.Path("capture");
  std::set<std::string> const asked = Askable(machine, left_out);
  ASSERT_GT(asked.size(), 1000U);
  std::vector<std::string> arguments = {"--machine", machine,        "capture",
                                        capture,     "--time-limit", "5m"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  ASSERT_EQ(Gatotu(arguments, Joined(asked)).status, 0);
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

TEST(CapturedVocabulary, AnswersAsTheLiveMachineDid) {
  CompareWithCapture("live", kRestless, {"--file", "-"});
}

TEST(CapturedVocabulary, OfEverythingAnswersAllThatLiesInNoFile) {
  CompareWithCapture("live", std::string(kRestless) + "|" + kInFiles, {});
}

TEST(CapturedVocabulary, AnswersAsAMacOSVolumeDid) {
  TemporaryFolder const volume;
  volume.Write("System/Library/CoreServices/SystemVersion.plist",
               "<plist><dict><key>ProductVersion</key><string>10.4.11</string></dict></plist>");
  volume.Write("Library/StartupItems/Web/StartupParameters.plist", "<plist><dict/></plist>");
  volume.Write("etc/passwd", "ann:x:501:20::/Users/ann:/bin/sh\n");
  volume.MakeFolder("Library/Fonts");
  CompareWithCapture(volume.Path(), kRestless, {"--file", "-"});
}

}  // namespace
}  // namespace gatotu::tests
