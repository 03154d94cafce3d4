// The list of digests beside a capture.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/host/child_process.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class CaptureManifest : public testing::Test {
 protected:
  CaptureManifest() {
    tree_.Write("tree/plain", "plain");
    tree_.Write("tree/back\\slash\nand line", "odd");
    tree_.Write("tree/latin\xE4", "odd");
    tree_.Write("tree/not taken", std::string(5000, 'x'));
    tree_.Link("tree/link", "nowhere");
    EXPECT_THAT(
        Gatotu({"capture", At(""), "--limit-file-bytes", "4K", "--with-files", Taken("**")}),
        Ends(0, HasSubstr("over the limit of bytes: " + Taken("not taken"))));
  }

  std::string Taken(std::string const& name) const { return tree_.Path("tree/" + name); }
  std::string At(std::string const& name) const { return tree_.Path("capture") + name; }
  std::string Copy(std::string const& name) const { return At("/root") + Taken(name); }
  ProcessResult Verify() const { return Gatotu({"capture", "--verify", At("")}); }

  TemporaryFolder tree_;
};

TEST_F(CaptureManifest, AgreesWithTheProgramForDigests) {
  EXPECT_THAT(Verify(), Ends(0, testing::_));
  EXPECT_THAT(RunShell("cd '" + At("") + "' && sha256sum --check --strict SHA256SUMS"),
              Ends(0, testing::AllOf(HasSubstr("machine.plist: OK"), HasSubstr("latin\xE4: OK"))));
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
      {"document", "printf X >> \"$capture/machine.plist\"", "altered: machine.plist"},
  };
  for (auto const& row : cases) {
    std::string told = row.told;
    if (std::size_t const at = told.find('%'); at != std::string::npos) {
      told.replace(at, 1, fs::path(Taken("plain")).parent_path().native());
    }
    RunShell("cp -a '" + At("") + "' '" + tree_.Path("kept") + "'");
    RunShell("capture='" + At("") + "'; cd '" + Copy("") + "'; " + row.change);
    EXPECT_THAT(Verify(), Ends(1, HasSubstr(told))) << row.name;
    fs::remove_all(At(""));
    fs::rename(tree_.Path("kept"), At(""));
  }
  EXPECT_EQ(Verify().status, 0);
}

TEST_F(CaptureManifest, HolesMayBeFilledByADiskThatKnowsNone) {
  RunShell("cp -a --sparse=never '" + At("") + "' '" + tree_.Path("full") + "'");
  EXPECT_EQ(Gatotu({"capture", tree_.Path("full"), "--verify"}).status, 0);
}

TEST_F(CaptureManifest, ThatIsNoneIsSaidSo) {
  tree_.Write("capture/SHA256SUMS", "nonsense\n");
  EXPECT_THAT(Verify().errors, HasSubstr("not a list of digests"));
  fs::remove(At("/SHA256SUMS"));
  EXPECT_EQ(Verify().status, 4);
  // It is no part of the capture.
  EXPECT_EQ(Gatotu({"--machine", At(""), "content of file \"" + Taken("plain") + "\""}).output,
            "plain\n");
}

}  // namespace
}  // namespace gatotu::tests
