// A recorded machine whose files want out of it, and a place outside that tells when it is entered.
#pragma once

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "temporary_folder.h"
#include "tests/machine/apple_double_text.h"
#include "tests/machine/recorded_tree.h"

// What lies in it must be found by nobody: neither opened nor read nor told of.
class Forbidden {
 public:
  static constexpr char kContent[] = "the canary sang";
  static constexpr char kYear[] = "1991";

  Forbidden() {
    folder_.AddFile("file", kContent);
    folder_.AddFile("list", "<plist><array><string>the canary sang</string></array></plist>");
    folder_.AddFile("double", AppleDoubleText({{2, kContent}, {9, std::string(32, '\xff')}}));
    folder_.AddFolder("folder");
    folder_.AddFile("folder/the canary sang");
    folder_.AddFifo("fifo");
    timespec const times[2] = {{.tv_sec = 678900000, .tv_nsec = 0},
                               {.tv_sec = 678900000, .tv_nsec = 0}};
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
  std::string deep = "/deep";
  for (int i = 0; i < 20; ++i) deep += '/' + std::string(255, 'd');
  std::filesystem::current_path(tree.At("/"));
  for (std::string rest = deep + "/end"; !rest.empty();) {
    std::string const name = rest.substr(1, rest.find('/', 1) - 1);
    rest.erase(0, name.size() + 1);
    std::filesystem::create_directory(name);
    std::filesystem::current_path(name);
  }
  std::filesystem::current_path("/");
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

// Adds files with companions that tell of more than they have.
inline void AddWildCompanions(RecordedTree const& tree) {
  std::string const sound = AppleDoubleText({{9, std::string(32, 'f')}, {2, "fork"}});
  constexpr std::size_t kCount = 24, kFirst = 26, kSecond = 38;
  struct {
    std::size_t at;
    std::string bytes;
  } const changes[] = {
      {kCount, "\xff\xff"},
      {kFirst + 4, "\xff\xff\xff\xff"},
      {kFirst + 8, "\xff\xff\xff\xff"},
      {kSecond + 4, "\xff\xff\xff"},
      {kSecond + 8, "\x7f\xff\xff\xff"},
      {kSecond, std::string(4, '\0')},
  };
  int number = 0;
  auto const add = [&](std::string const& companion) {
    std::string const name = "wild " + std::to_string(++number);
    tree.Write("/wild/" + name, "ordinary");
    tree.Write("/wild/._" + name, companion);
  };
  for (auto const& change : changes) {
    add(std::string(sound).replace(change.at, change.bytes.size(), change.bytes));
  }
  for (std::size_t const size : {3, 4, 25, 27, 49}) add(sound.substr(0, size));
}
