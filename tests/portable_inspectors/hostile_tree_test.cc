// Asks all that there is to ask of every item of a recorded machine that was made to do harm.
#include "hostile_tree.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include "portable_inspectors/filesystem_object.h"
#include "tests/support/scripted_machine.h"

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
  explicit Questions(std::string const& type) : start_(type) { Collect(type, "", 3); }
  std::vector<std::string> const& all() const { return all_; }

 private:
  void Collect(std::string const& type, std::string const& rest, int depth) {
    if (depth == 0) return;
    for (VocabularyEntry const& entry : vocabulary_) {
      bool const is_property =
          entry.kind == VocabularyKind::kProperty || entry.kind == VocabularyKind::kIterated;
      if (!is_property || (entry.object != type && entry.object != BaseOf(type))) continue;
      std::string question = entry.plural;
      if (!entry.parameter.empty()) question += entry.parameter == "integer" ? " 0" : " \"*\"";
      question += rest;
      std::string const whole = question + " of " + start_ + " \"/\"";
      // What is not understood is not by what follows it either, and to say why takes long.
      if (!gatotu::Compile(whole, gatotu::Purpose::kUse).expression) continue;
      if (gatotu::Check(whole).empty()) {
        all_.push_back(question);
      } else {
        Collect(entry.result, " of " + question, depth - 1);
      }
    }
  }

  std::string BaseOf(std::string const& type) const {
    for (VocabularyEntry const& entry : vocabulary_) {
      if (entry.kind == VocabularyKind::kType && entry.singular == type) return entry.object;
    }
    return {};
  }

  std::vector<VocabularyEntry> const vocabulary_ = gatotu::Vocabulary();
  std::string const start_;
  std::vector<std::string> all_;
};

// Hands over each value, before it asks for the next one, and tells how many there were.
std::size_t Visit(std::string const& expression,
                  gatotu::FunctionRef<void(gatotu::Value const&)> visit) {
  std::size_t values = 0;
  auto const compilation = gatotu::Compile(expression, gatotu::Purpose::kUse);
  auto const take = [&](gatotu::Value const& value) {
    visit(value);
    return ++values > 0;
  };
  EXPECT_TRUE(gatotu::Evaluate(*compilation.expression, take).IsAnswered()) << expression;
  return values;
}

class HostileTree : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(module_, nullptr) << error_; }

  // Of what is told, nothing may be from outside. How many values it is.
  std::size_t Ask(std::string const& expression) {
    std::string const answer = Answer(expression, std::chrono::seconds(20));
    for (char const* text : {Forbidden::kContent, Forbidden::kMonth, "time limit"}) {
      EXPECT_EQ(answer.find(text), std::string::npos) << expression << ": " << answer;
    }
    EXPECT_FALSE(answer.starts_with("refused ") || answer.ends_with("failed: ")) << expression;
    if (answer.empty() || answer == "no such object" || answer.starts_with("failed: ")) return 0;
    return 1 + static_cast<std::size_t>(std::ranges::count(answer, '\n'));
  }

  void ExpectNobodyWasOutside() {
    for (auto const& [source, outcome] : announcements_.entries) {
      EXPECT_FALSE(outcome == machine::Outcome::kAnswered && source.starts_with(forbidden_.Path()))
          << source;
    }
    EXPECT_FALSE(forbidden_.TakeVisit());
    std::ifstream(forbidden_.Path("file")).get();
    EXPECT_TRUE(forbidden_.TakeVisit()) << "the watch is blind";
  }

  Forbidden forbidden_;
  RecordedTree tree_;
  std::string error_;
  std::unique_ptr<gatotu::PlugIn> module_ = gatotu::PlugIn::Load(GATOTU_MODULE, error_);
  MachineInUse use_{tree_.Machine()};
  AnnouncementLog announcements_;
};

TEST_F(HostileTree, AnswersEveryQuestionFromWithin) {
  AddWaysOut(tree_, forbidden_);
  AddOddItems(tree_);
  std::vector<std::string> paths;
  Visit(R"(descendants of folder "/")", [&](gatotu::Value const& value) {
    paths.push_back(static_cast<filesystem_object const*>(value.Address())->Path());
  });
  EXPECT_GT(paths.size(), 70U);
  std::size_t values = 0;
  for (auto const& [type, plural] : {std::pair("filesystem object", "items"),
                                     std::pair("file", "files"), std::pair("folder", "folders")}) {
    Questions const questions(type);
    for (std::string const& path : paths) {
      std::size_t const name = path.rfind('/') + 1;
      std::string const listed = " whose (name of it = " + Quoted(path.substr(name)) +
                                 ") of folder " + Quoted(path.substr(0, name));
      for (std::string const& question : questions.all()) {
        values += Ask(question + " of " + type + " " + Quoted(path));
        values += Ask(question + " of " + plural + listed);
      }
    }
  }
  EXPECT_GT(values, 50 * paths.size());
  ExpectNobodyWasOutside();
}

TEST(ChangingFiles, AreReadAsFarAsTheyAreThere) {
  constexpr std::size_t kLines = 100'000;
  TemporaryFolder folder;
  std::string text;
  for (std::size_t i = 0; i < kLines; ++i) text += "0123456789\n";
  folder.Write("long", text);
  std::string const path = folder.Path("long");
  std::size_t const read = Visit("lines of file \"" + path + '"',
                                 [&](auto const&) { std::filesystem::resize_file(path, 0); });
  EXPECT_GT(read, 0U);
  EXPECT_LT(read, kLines);

  for (int i = 0; i < 10; ++i) folder.Write("few " + std::to_string(i), "x");
  auto const remove_all = [&](gatotu::Value const&) {
    std::filesystem::remove_all(folder.Path());
    std::filesystem::create_symlink("/dev/zero", folder.Path());
  };
  EXPECT_EQ(Visit("sha256s of files of folder \"" + folder.Path() + '"', remove_all), 1U);
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
