#include "machine/capture/capture.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "machine/capture/document.h"
#include "machine/capture/machine.h"
#include "machine/live/files.h"
#include "machine/system_files.h"

namespace machine {
namespace {

using capture::Facts;
using capture::Field;
using capture::OpenedCapture;

constexpr std::size_t kLargestDocument = std::size_t{1} << 28;

// Below a folder that is open; links within it may be followed.
FileDescriptor OpenBeneath(FileDescriptor const& folder, std::string const& path) {
  constexpr int kTries = 8;
  open_how how = {};
  how.flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
  for (int i = 0; i < kTries; ++i) {
    FileDescriptor item(
        static_cast<int>(::syscall(SYS_openat2, folder.number(), path.c_str(), &how, sizeof how)));
    if (item.is_open() || errno != EAGAIN) return item;
  }
  return {};
}

Absence Refusal(Outcome reason, std::string const& folder, std::string why) {
  return {reason, folder, std::move(why)};
}

// The folder with the copies, or why there is none.
void OpenRoot(FileDescriptor const& folder, OpenedCapture& opened) {
  Field const field = opened.facts["SystemRoot"];
  Fact<std::string> const path = field.exists() ? field.Text() : Fact<std::string>("root");
  FileDescriptor root;
  if (!path) {
    opened.why_no_files = path.absence().source + ": " + path.absence().where;
  } else if (path->find('\0') != std::string::npos) {
    opened.why_no_files = field.path() + ": not a path";
  } else {
    root = OpenBeneath(folder, *path);
    if (!root.is_open()) opened.why_no_files = field.path() + ": " + std::strerror(errno);
    if (!root.is_open() && errno == EXDEV) {
      opened.why_no_files = field.path() + ": leads out of the capture";
    }
  }
  if (root.is_open()) opened.root.emplace(std::move(root));
}

Fact<Record> ReadDocument(FileSource const& files, std::string const& folder, RecordReader reader) {
  std::string const path = "/" + std::string(capture::kDocument), name = folder + path;
  Fact<std::string> const bytes = files.ReadFile(path, kLargestDocument);
  if (!bytes) {
    Absence absence = bytes.absence();
    absence.source = name;
    return absence;
  }
  Fact<Record> document = reader(*bytes, name);
  if (!document) return document;
  if (document->As<RecordDictionary>() == nullptr) {
    return Refusal(Outcome::kMalformed, name, "not a dictionary");
  }
  Field const version = Field(&document.value(), name + ": ")["FormatVersion"];
  if (!version.exists()) return document;
  Fact<std::int64_t> const number = version.Integer(1, INT64_MAX);
  if (!number) return Refusal(Outcome::kMalformed, name, "FormatVersion: not a format's number");
  if (*number > capture::kFormatVersion) {
    return Refusal(Outcome::kNotSupported, name,
                   "of format " + std::to_string(*number) + ", which is later than " +
                       std::to_string(capture::kFormatVersion));
  }
  return document;
}

Absence NoCapture(FileSource const& files, std::string const& folder) {
  if (files.Status("/" + std::string(capture::kUnfinished), Links::kKeep)) {
    return Refusal(Outcome::kMalformed, folder, "the capture was broken off");
  }
  return Refusal(Outcome::kAbsent, folder,
                 "no capture: it has no machine.plist and is not the root of a macOS volume");
}

}  // namespace

Fact<std::shared_ptr<Machine const>> OpenCapture(std::string const& folder,
                                                 CaptureChoices const& choices,
                                                 RecordReader reader) {
  FileDescriptor const top(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!top.is_open()) return live::AnnounceError(errno, folder);
  FileDescriptor again = OpenBeneath(top, ".");
  if (!again.is_open()) {
    return Refusal(Outcome::kNotSupported, folder,
                   "this kernel cannot keep paths below a folder (openat2)");
  }
  live::Root whole(std::move(again));
  live::Files const files(whole, true);
  OpenedCapture opened;
  bool const has_document =
      files.Status("/" + std::string(capture::kDocument), Links::kKeep).has_value();
  if (has_document) {
    Fact<Record> document = ReadDocument(files, folder, reader);
    if (!document) return document.absence();
    opened.facts = Facts(std::move(document).value());
    OpenRoot(top, opened);
    opened.folder = std::make_shared<live::Root const>(std::move(whole));
  } else if (files.Status(kSystemVersionPath, Links::kFollow)) {
    opened.is_volume = true;
    opened.root.emplace(std::move(whole));
  } else {
    return NoCapture(files, folder);
  }
  return capture::MakeCapture(std::move(opened), choices, reader);
}

std::string CaptureMessage(Absence const& absence) {
  std::string why = absence.where;
  if (why.empty() && absence.error != 0) why = std::strerror(absence.error);
  if (why.empty()) why = NameOf(absence.reason);
  return absence.source + ": " + why;
}

}  // namespace machine
