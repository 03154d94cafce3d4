// A recorded machine whose files want out of it, and a place outside that tells when it is entered.
#pragma once

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <string>

#include "temporary_folder.h"
#include "tests/machine/apple_double_text.h"
#include "tests/machine/recorded_tree.h"

// What lies in it must be found by nobody: neither opened nor read nor told of.
class Forbidden {
 public:
  static constexpr char kContent[] = "the canary sang";
  static constexpr char kMonth[] = "1991-07-";

  Forbidden() {
    folder_.Write("file", kContent);
    folder_.Write("list", "<plist><array><string>the canary sang</string></array></plist>");
    folder_.Write("double", AppleDoubleText({{2, kContent}, {9, std::string(32, '\xff')}}));
    folder_.MakeFolder("folder");
    folder_.Write("folder/the canary sang");
    folder_.MakeFifo("fifo");
    timespec const long_ago = {.tv_sec = 678900000, .tv_nsec = 0}, times[] = {long_ago, long_ago};
    for (char const* name : {"file", "list", "double", "folder", "fifo"}) {
      utimensat(AT_FDCWD, Path(name).c_str(), times, 0);
    }
    for (std::string const& watched : {Path(), Path("folder")}) {
      inotify_add_watch(watch_.number(), watched.c_str(), IN_OPEN | IN_ACCESS);
    }
  }

  std::string const& Path() const { return folder_.Path(); }
  std::string Path(std::string const& name) const { return folder_.Path(name); }

  // Whether anything in it was opened since the last call.
  bool TakeVisit() const {
    char events[4096];
    return read(watch_.number(), events, sizeof events) > 0;
  }

 private:
  TemporaryFolder folder_;
  machine::FileDescriptor watch_{inotify_init1(IN_NONBLOCK | IN_CLOEXEC)};
};

// Adds links that lead outside, each by another way; they end at what `forbidden` has.
inline void AddWaysOut(RecordedTree const& tree, Forbidden const& forbidden) {
  std::string up;
  for (int i = 0; i < 20; ++i) up += "../";
  tree.Link("/proc/self/root", "/");
  tree.Link("/proc/self/cwd", forbidden.Path());
  for (std::string const name : {"file", "list", "folder", "fifo"}) {
    std::string const target = forbidden.Path(name);
    tree.Link("/ways/absolute " + name, target);
    tree.Link("/ways/upward " + name, up + target.substr(1));
    tree.Link("/ways/chain " + name, "second " + name);
    tree.Link("/ways/second " + name, "to/ways/../absolute " + name);
    tree.Link("/ways/by process " + name, "/proc/self/root" + target);
    tree.Link("/ways/by cwd " + name, "/proc/self/cwd/" + name);
  }
  tree.Link("/ways/to", "..");
  tree.Link("/ways/._with companion", forbidden.Path("double"));
  tree.Write("/ways/with companion", "");
  tree.Link("/etc/passwd", up + "etc/passwd");
  tree.Link("/etc/group", forbidden.Path("fifo"));
  tree.Link("/etc/localtime", forbidden.Path("file"));
}

// Adds items whose nature, names or depth are a nuisance.
inline void AddOddItems(RecordedTree const& tree) {
  tree.Write("/plain", "ordinary");
  // Without arrays in it: of those the inspectors keep a reference for ever.
  tree.Write("/list", "<plist><dict><key>*</key><string>ordinary</string></dict></plist>");
  tree.Write("/array", "<plist><array><string>ordinary</string></array></plist>");
  tree.Write("/deep list", std::string(5000, '('));
  tree.Link("/loop", "loop");
  tree.Link("/ping", "pong");
  tree.Link("/pong", "ping");
  tree.Link("/here", ".");
  tree.Link("/nowhere", std::string(4000, 'n'));
  tree.Write("/proc/self/mountinfo", "1 1 0:1 / /\\ - \n\n - - - \xff\n99999999999999999999 -1\n");
  tree.MakeChain("deep", std::string(255, 'd'), 20, [](int) {});
  for (char const* name : {"line\nfeed", "\xff\xfe", "...", ":", "\\", "\"", " ", "*", "._", "._._",
                           "\x1b[31m", "\xe2\x80\xae"}) {
    tree.Write("/names/" + std::string(name), "ordinary");
  }
  for (char const* name : {"/fifo", "/._behind a pipe"}) mkfifo(tree.At(name).c_str(), 0600);
  tree.Write("/behind a pipe", "ordinary");
  // Refused to all but the superuser.
  mknod(tree.At("/zeros").c_str(), S_IFCHR | 0600, makedev(1, 5));
  mknod(tree.At("/._behind a device").c_str(), S_IFCHR | 0600, makedev(1, 5));
  tree.Write("/behind a device", "ordinary");
}
