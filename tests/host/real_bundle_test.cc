// An application that somebody else built, on a volume made of it: the command against Python's
// property lists. The application comes from a package registry, so this wants the network.

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "tests/host/child_process.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

constexpr char kPackage[] = "node-notifier@10.0.1";
constexpr char kApplication[] = "package/vendor/mac.noindex/terminal-notifier.app";

// With the environment at hand, which knows the way to the network. False when it leads nowhere.
bool AssembleVolume(TemporaryFolder const& folder) {
  folder.Write("volume/System/Library/CoreServices/SystemVersion.plist",
               "<plist><dict><key>ProductName</key><string>macOS</string></dict></plist>");
  folder.MakeFolder("volume/Applications");
  std::string const line = "cd " + folder.Path() +
                           " && (timeout 60 npm pack --ignore-scripts --fetch-retries=0 " +
                           kPackage + " && tar xzf *.tgz) >fetch.log 2>&1 && mv " + kApplication +
                           " volume/Applications/Real.app";
  return std::system(line.c_str()) == 0;
}

constexpr char kPython[] = R"python(
import json, plistlib, re, sys
contents = sys.argv[1] + '/Contents/'
info = plistlib.load(open(contents + 'Info.plist', 'rb'))
package = open(contents + 'PkgInfo', 'rb').read()
numbers = re.fullmatch(r'(\d\d?)(?:\.(\d))?(?:\.(\d))?', info['CFBundleVersion'])
json.dump({'numbers': '.'.join(n or '0' for n in numbers.groups()), 'type': package[:4].decode(),
           'creator': package[4:8].decode(), 'info': info}, sys.stdout)
)python";

nlohmann::json Python(TemporaryFolder const& folder) {
  folder.Write("judge.py", kPython);
  ProcessResult const run =
      RunShell("cd " + folder.Path() + " && python3 judge.py volume/Applications/Real.app");
  EXPECT_EQ(run.status, 0) << run.errors;
  return nlohmann::json::parse(run.output);
}

TEST(RealBundle, IsReadAsPythonReadsIt) {
  TemporaryFolder const folder;
  if (!AssembleVolume(folder)) GTEST_SKIP() << "could not fetch " << kPackage << " with npm";
  nlohmann::json const expected = Python(folder);
  auto const ask = [&](std::string const& what) {
    ProcessResult const run = Gatotu({"--machine", folder.Path("volume"), "--format", "json",
                                      what + " of bundle of folder \"/Applications/Real.app\""});
    EXPECT_EQ(run.status, 0) << run.output;
    return nlohmann::json::parse(run.output)["values"][0];
  };
  EXPECT_EQ(ask("global dictionary"), expected["info"]);
  // Neither codes nor the stages of versions have a text of their own.
  for (auto const& [what, value] :
       {std::pair{"type", "file type " + expected["type"].dump()},
        {"creator", "file signature " + expected["creator"].dump()},
        {"version", expected["numbers"].dump() + " as version"},
        {"bundle version", expected["numbers"].dump() + " as version"}}) {
    EXPECT_EQ(ask("(it = " + value + ") of " + what), true) << what << value;
  }
}

}  // namespace
}  // namespace gatotu::tests
