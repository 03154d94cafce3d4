// Asks all that there is to ask of every item of a recorded machine that was made to do harm.
#include "hostile_tree.h"

#include <atomic>
#include <map>
#include <set>
#include <thread>

#include "evaluator/evaluator.h"
#include "machine/machine.h"
#include "portable_inspectors/filesystem_object.h"

namespace {

using gatotu::VocabularyEntry;
using gatotu::VocabularyKind;

std::string Quoted(std::string_view text) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string quoted = "\"";
  for (unsigned char const byte : text) {
    quoted += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return quoted + '"';
}

// Whatever can be asked of a type, so far as it has a text: "lengths of resource forks".
class Questions {
 public:
  std::vector<std::string> const& Of(std::string const& type) {
    std::vector<std::string>& questions = known_[type];
    if (questions.empty()) Collect(type, type, "", 3, questions);
    return questions;
  }

 private:
  static std::string Parameter(std::string const& type) {
    if (type.empty()) return "";
    return type == "integer" ? " 0" : " \"*\"";
  }

  void Collect(std::string const& start, std::string const& type, std::string const& rest,
               int depth, std::vector<std::string>& questions) {
    if (depth == 0) return;
    for (VocabularyEntry const& entry : vocabulary_) {
      bool const is_property =
          entry.kind == VocabularyKind::kProperty || entry.kind == VocabularyKind::kIterated;
      if (!is_property || (entry.object != type && entry.object != BaseOf(type))) continue;
      std::string const question = entry.plural + Parameter(entry.parameter) + rest;
      std::string const whole = question + " of " + start + " \"/\"";
      // What is not understood is not by what follows it either, and to say why takes long.
      if (!gatotu::Compile(whole, gatotu::Purpose::kUse).expression) continue;
      if (gatotu::Check(whole).empty()) {
        questions.push_back(question);
      } else {
        Collect(start, entry.result, " of " + question, depth - 1, questions);
      }
    }
  }

  std::string BaseOf(std::string const& type) const {
    for (VocabularyEntry const& entry : vocabulary_) {
      if (entry.kind == VocabularyKind::kType && entry.singular == type) return entry.object;
    }
    return {};
  }

  std::vector<VocabularyEntry> vocabulary_ = gatotu::Vocabulary();
  std::map<std::string, std::vector<std::string>> known_;
};

// Notes what the machine found at paths that only the machine outside has.
class Listener final : public machine::SourceObserver {
 public:
  explicit Listener(std::string forbidden) : forbidden_(std::move(forbidden)) {}
  void Consulted(machine::Announcement const& announcement) override {
    if (announcement.outcome == machine::Outcome::kAnswered &&
        announcement.source.starts_with(forbidden_)) {
      found.emplace(announcement.source);
    }
  }
  std::set<std::string> found;

 private:
  std::string forbidden_;
};

class HostileTree : public testing::Test {
 protected:
  HostileTree() {
    std::string error;
    module_ = gatotu::PlugIn::Load(GATOTU_MODULE, error);
    EXPECT_NE(module_, nullptr) << error;
    machine::SetCurrentMachine(tree_.Machine());
    machine::SetSourceObserver(&listener_);
  }
  ~HostileTree() override {
    machine::SetSourceObserver(nullptr);
    machine::SetCurrentMachine(nullptr);
  }

  // Of what the values tell, nothing may be from outside.
  std::size_t Ask(std::string const& expression) {
    gatotu::Compilation const compilation = gatotu::Compile(expression);
    EXPECT_NE(compilation.expression, nullptr) << expression;
    if (compilation.expression == nullptr) return 0;
    std::size_t values = 0;
    gatotu::EvaluateOptions options;
    options.time_limit = std::chrono::seconds(20);
    gatotu::Evaluation const evaluation = gatotu::Evaluate(
        *compilation.expression,
        [&](gatotu::Value const& value) {
          ++values;
          EXPECT_EQ(value.Text().find(Forbidden::kContent), std::string_view::npos) << expression;
          EXPECT_FALSE(value.Type().name == "time" && value.Text().starts_with(Forbidden::kYear))
              << expression;
          return true;
        },
        options);
    bool const is_told =
        evaluation.outcome == gatotu::Outcome::kNoSuchObject ||
        (evaluation.outcome == gatotu::Outcome::kFailed && !evaluation.diagnostic.message.empty());
    EXPECT_TRUE(evaluation.IsAnswered() || is_told) << expression;
    return values;
  }

  std::vector<std::string> Descendants() {
    std::vector<std::string> paths;
    auto const compilation = gatotu::Compile("descendants of folder \"/\"", gatotu::Purpose::kUse);
    auto const evaluation =
        gatotu::Evaluate(*compilation.expression, [&](gatotu::Value const& value) {
          paths.push_back(static_cast<filesystem_object const*>(value.Address())->Path());
          return true;
        });
    EXPECT_TRUE(evaluation.IsAnswered());
    return paths;
  }

  void ExpectNobodyWasOutside() {
    EXPECT_EQ(listener_.found, std::set<std::string>());
    EXPECT_FALSE(forbidden_.TakeVisit());
    std::ifstream(forbidden_.Path("file")).get();
    EXPECT_TRUE(forbidden_.TakeVisit()) << "the watch is blind";
  }

  Forbidden forbidden_;
  RecordedTree tree_;
  Listener listener_{forbidden_.Path()};
  std::unique_ptr<gatotu::PlugIn> module_;
};

TEST_F(HostileTree, AnswersEveryQuestionFromWithin) {
  AddWaysOut(tree_, forbidden_);
  AddOddItems(tree_);
  Questions questions;
  std::vector<std::string> const paths = Descendants();
  EXPECT_GT(paths.size(), 70U);
  std::size_t values = 0;
  for (std::string const& path : paths) {
    std::size_t const slash = path.rfind('/');
    std::string const listed = " whose (name of it = " + Quoted(path.substr(slash + 1)) +
                               ") of folder " + Quoted(path.substr(0, slash + 1));
    for (auto const& [type, plural] :
         {std::pair("filesystem object", "items"), std::pair("file", "files"),
          std::pair("folder", "folders")}) {
      for (std::string const& question : questions.Of(type)) {
        values += Ask(question + " of " + type + " " + Quoted(path));
        values += Ask(question + " of " + plural + listed);
      }
    }
  }
  EXPECT_GT(values, 50 * paths.size());
  ExpectNobodyWasOutside();
}

// Each value is asked for behind the one before, so that a file changes just between the two.
std::size_t CountWhile(std::string const& expression, gatotu::FunctionRef<void()> change) {
  std::size_t values = 0;
  auto const compilation = gatotu::Compile(expression);
  EXPECT_TRUE(gatotu::Evaluate(*compilation.expression,
                               [&](gatotu::Value const&) {
                                 if (++values == 1) change();
                                 return true;
                               })
                  .IsAnswered())
      << expression;
  return values;
}

TEST(ChangingFiles, AreReadAsFarAsTheyAreThere) {
  constexpr std::size_t kLines = 100'000;
  TemporaryFolder folder;
  std::string text;
  for (std::size_t i = 0; i < kLines; ++i) text += "0123456789\n";
  folder.Write("long", text);
  std::string const path = folder.Path("long");
  std::size_t const read =
      CountWhile("lines of file \"" + path + '"', [&] { EXPECT_EQ(truncate(path.c_str(), 0), 0); });
  EXPECT_GT(read, 0U);
  EXPECT_LT(read, kLines);

  for (int i = 0; i < 10; ++i) folder.Write("few " + std::to_string(i), "x");
  auto const remove_all = [&] {
    std::filesystem::remove_all(folder.Path());
    std::filesystem::create_symlink("/dev/zero", folder.Path());
  };
  EXPECT_EQ(CountWhile("sha256s of files of folder \"" + folder.Path() + '"', remove_all), 1U);
}

// Folders and links change places while they are looked at.
TEST_F(HostileTree, StaysWithinWhileItChanges) {
  tree_.Write("/swap/file", "ordinary");
  tree_.Write("/swap/._file", AppleDoubleText({{2, "fork"}}));
  tree_.Link("/link", forbidden_.Path());
  std::atomic<bool> is_over = false;
  std::thread swapping([&] {
    while (!is_over) {
      renameat2(AT_FDCWD, tree_.At("/swap").c_str(), AT_FDCWD, tree_.At("/link").c_str(),
                RENAME_EXCHANGE);
    }
  });
  for (int i = 0; i < 1000; ++i) {
    for (char const* question :
         {"contents of file \"/swap/file\"",
          "lengths of resource forks of files of folder \"/swap\"",
          "names of descendants of folder \"/\"", "contents of files of folder \"/link\""}) {
      Ask(question);
    }
  }
  is_over = true;
  swapping.join();
  ExpectNobodyWasOutside();
}

}  // namespace
