// Files that a capture takes along, and the list of digests beside them.
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/host/child_process.h"
#include "tests/machine/apple_double_text.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAreArray;
using testing::HasSubstr;

class TakenFiles : public testing::Test {
 protected:
  std::string At(std::string const& name) const { return tree_.Path("tree/" + name); }
  ProcessResult Take(std::vector<std::string> arguments) const {
    fs::remove_all(tree_.Path("capture"));
    arguments.insert(arguments.begin(), {"capture", tree_.Path("capture")});
    return Gatotu(arguments);
  }
  std::string Captured(std::string const& expression) const {
    ProcessResult const run = Gatotu({"--machine", tree_.Path("capture"), expression});
    return run.output + run.errors;
  }
  // Those of which the capture has the content, by the list of digests.
  std::vector<std::string> Taken() const {
    std::vector<std::string> taken;
    for (std::string const& line : Lines(tree_.Read("capture/SHA256SUMS"))) {
      std::size_t const at = line.find(At(""));
      if (line.front() != '#' && at != std::string::npos) {
        taken.push_back(line.substr(at + At("").size()));
      }
    }
    return taken;
  }

  TemporaryFolder tree_;
};

TEST_F(TakenFiles, AreThoseThatAPatternFinds) {
  for (char const* name : {"a.conf", "b.txt", "d/a.conf", "d/e/f/a.conf", ".hidden.conf",
                           ".git/a.conf", "st*r", "latin\xE4.conf"}) {
    tree_.Write("tree/" + std::string(name), "content");
  }
  tree_.Link("tree/link", "d");
  tree_.Link("tree/z.conf", "a.conf");
  tree_.MakeFifo("tree/fifo.conf");
  struct {
    char const* pattern;
    std::vector<std::string> found;
  } const cases[] = {
      {"a.conf", {"a.conf"}},
      {"./d/../a.conf", {"a.conf"}},
      {"*.conf", {"a.conf", "latin\xE4.conf"}},
      {".*.conf", {".hidden.conf"}},
      {"?.[ct]*", {"a.conf", "b.txt"}},
      {"*/a.conf", {"d/a.conf"}},
      {"**/a.conf", {"a.conf", "d/a.conf", "d/e/f/a.conf"}},
      {"**/e/**/*", {"d/e/f/a.conf"}},
      {"d/**", {"d/a.conf", "d/e/f/a.conf"}},
      {".git/**", {".git/a.conf"}},
      {"st\\*r", {"st*r"}},
      {"link/a.conf", {"d/a.conf"}},
      {"link", {}},
      {"d", {}},
      {"fifo.conf", {}},
  };
  for (auto const& row : cases) {
    EXPECT_THAT(Take({"--for", "1", "--with-files", At(row.pattern)}), Ends(0, testing::_, ""));
    EXPECT_THAT(Taken(), ElementsAreArray(row.found)) << row.pattern;
  }
  EXPECT_THAT(Take({"--with-files", At("none*")}).errors, HasSubstr("nothing is"));
  EXPECT_EQ(Take({"--with-files", "a.conf"}).status, 2);
  EXPECT_FALSE(fs::exists(tree_.Path("capture")));
}

TEST_F(TakenFiles, AreAsTheyWere) {
  tree_.Write("tree/note", "one\ntwo\n");
  tree_.Write("tree/._note", AppleDoubleText({{9, "TEXTttxt" + std::string(24, '\0')},
                                              {2, std::string(100'000, 'r')}}));
  tree_.Link("tree/out", "/etc/passwd");
  tree_.Link("tree/loop", "loop");
  ::chmod(At("note").c_str(), 0640);
  std::vector<std::string> questions;
  for (char const* what :
       {"(size of it, modification time of it, symbolic mode of it, owner of it)", "lines",
        "size of resource fork", "sha256"}) {
    questions.push_back(what + std::string(" of file \"") + At("note") + "\"");
  }
  questions.push_back("(name of it, link target of it | \"\") of items of folder \"" + At("") +
                      "\"");
  questions.push_back("exists file \"" + At("loop") + "\"");
  std::vector<std::string> live;
  for (std::string const& question : questions) live.push_back(Gatotu({question}).output);
  EXPECT_THAT(live, testing::Each(testing::Ne("")));
  EXPECT_EQ(Take({"--with-files", At("**")}).errors, "");
  fs::remove_all(At(""));
  for (std::size_t i = 0; i < questions.size(); ++i) {
    EXPECT_EQ(Captured(questions[i]), live[i]) << questions[i];
  }
}

TEST_F(TakenFiles, ThatMayNotBeReadAreTold) {
  tree_.Write("tree/secret", "secret");
  tree_.Write("tree/closed/inside", "inside");
  ::chmod(At("secret").c_str(), 0);
  ::chmod(At("closed").c_str(), 0);
  ::chmod(tree_.Path().c_str(), 0777);
  if (AsNobody({"1"}).status != 0) GTEST_SKIP() << "nobody cannot run the command here";
  EXPECT_THAT(AsNobody({"capture", tree_.Path("capture"), "--with-files", At("**")}),
              Ends(0, testing::_,
                   testing::AllOf(HasSubstr(At("secret") + ": Permission denied"),
                                  HasSubstr(At("closed") + ": Permission denied"))));
  EXPECT_THAT(Captured("content of file \"" + At("secret") + "\""),
              HasSubstr("permission refused"));
}

// However it ended, what is there is one state of the file.
TEST_F(TakenFiles, ThatAreWrittenToAreOfOnePiece) {
  tree_.Write("tree/log", "line\n");
  std::atomic<bool> is_done = false;
  std::thread writer([&] {
    std::ofstream log(At("log"), std::ios::app);
    while (!is_done) log << "line" << std::endl;
  });
  EXPECT_EQ(Take({"--with-files", At("log")}).status, 0);
  is_done = true;
  writer.join();
  std::string const file = "file \"" + At("log") + "\"";
  EXPECT_EQ(Captured("size of " + file + " = length of content of " + file), "true\n");
}

TEST_F(TakenFiles, NeedNoMemoryOfTheirSize) {
  tree_.Write("tree/small", "small");
  tree_.Write("tree/large", std::string(60'000'000, 'x'));
  ProcessResult const small = Take({"--with-files", At("small")});
  ProcessResult const large = Take({"--with-files", At("large")});
  EXPECT_THAT(Taken(), testing::ElementsAre("large"));
  EXPECT_LT(large.most_memory, small.most_memory + 10'000'000);
}

class CaptureManifest : public TakenFiles {
 protected:
  CaptureManifest() {
    for (std::string const name : {"plain", "back\\slash\nand line", "latin\xE4"}) {
      tree_.Write("tree/" + name, "odd");
    }
    tree_.Write("tree/not taken", std::string(5000, 'x'));
    tree_.Link("tree/link", "nowhere");
    EXPECT_THAT(Take({"--limit-file-bytes", "4K", "--with-files", At("**")}),
                Ends(0, HasSubstr("over the limit of bytes: " + At("not taken"))));
  }

  ProcessResult Verify() const { return Gatotu({"capture", "--verify", tree_.Path("capture")}); }
  ProcessResult Shell(std::string const& line) const {
    return RunShell("cd " + tree_.Path() + " && " + line);
  }
};

TEST_F(CaptureManifest, AgreesWithTheProgramForDigests) {
  EXPECT_THAT(Verify(), Ends(0, testing::_));
  EXPECT_THAT(Shell("cd capture && sha256sum --check --strict SHA256SUMS"),
              Ends(0, testing::AllOf(HasSubstr("machine.plist: OK"), HasSubstr("latin\xE4: OK"))));
  // A disk may know no holes.
  Shell("mv capture full && cp -a --sparse=never full capture");
  EXPECT_EQ(Verify().status, 0);
}

TEST_F(CaptureManifest, TellsWhatIsNotAsItWasWritten) {
  struct {
    char const *name, *change, *told;
  } const cases[] = {
      {"altered", "printf X >> plain", "altered: root%/plain"},
      {"odd name", "for each in back*; do printf X > \"$each\"; done",
       "altered: root%/back\\slash\\x0aand line"},
      {"another target", "ln -sfn elsewhere link", "altered: root%/link"},
      {"no file any more", "rm plain; mkfifo plain", "altered: root%/plain"},
      {"bytes in a hole", "printf X >> 'not taken'", "altered: root%/not taken"},
      {"missing", "rm latin*", "missing: root%/latin"},
      {"added", "touch new", "added: root%/new"},
      {"document", "printf X >> $OLDPWD/capture/machine.plist", "altered: machine.plist"},
  };
  Shell("mv capture kept");
  for (auto const& row : cases) {
    std::string told = row.told;
    std::size_t const at = told.find('%');
    if (at != std::string::npos) told.replace(at, 1, tree_.Path("tree"));
    Shell("rm -rf capture; cp -a kept capture; cd capture/root" + At("") + "; " + row.change);
    EXPECT_THAT(Verify(), Ends(1, HasSubstr(told))) << row.name;
  }
}

TEST_F(CaptureManifest, OfAnEndlessFileIsGivenUpAtTheTimeLimit) {
  fs::resize_file(tree_.Path("capture/machine.plist"), std::uintmax_t{1} << 40);
  std::string const capture = tree_.Path("capture");
  EXPECT_THAT(Gatotu({"capture", capture, "--verify", "--time-limit", "100ms"}),
              Ends(3, "", HasSubstr("limit was reached; " + capture + ": not all of it was")));
}

TEST_F(CaptureManifest, ThatIsNoneIsSaidSo) {
  tree_.Write("capture/SHA256SUMS", "nonsense\n");
  EXPECT_THAT(Verify().errors, HasSubstr("not a list of digests"));
  fs::resize_file(tree_.Path("capture/SHA256SUMS"), std::uintmax_t{1} << 40);
  EXPECT_THAT(Verify().errors, HasSubstr("larger than 256 MiB"));
  fs::remove(tree_.Path("capture/SHA256SUMS"));
  EXPECT_EQ(Verify().status, 4);
  // It is no part of the capture.
  EXPECT_EQ(Captured("content of file \"" + At("plain") + "\""), "odd\n");
}

}  // namespace
}  // namespace gatotu::tests
