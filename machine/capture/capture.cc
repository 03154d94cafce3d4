#include "machine/capture/capture.h"

#include <fcntl.h>
#include <linux/openat2.h>

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

// Links may be followed within the folder.
FileDescriptor OpenBeneath(FileDescriptor const& folder, char const* path) {
  return live::OpenConfined(folder.number(), path, RESOLVE_BENEATH, O_DIRECTORY);
}

Absence Refusal(Outcome reason, std::string const& folder, std::string why) {
  return {reason, folder, std::move(why)};
}

// The folder with the copies.
Fact<FileDescriptor> OpenRoot(FileDescriptor const& folder, Facts const& facts) {
  Field const field = facts["SystemRoot"];
  Fact<std::string> const path = field.exists() ? field.Text() : capture::kRoot;
  if (!path) return path.absence();
  if (path->find('\0') != std::string::npos) return field.Malformed("not a path");
  FileDescriptor root = OpenBeneath(folder, path->c_str());
  if (root.is_open()) return root;
  bool const leads_out = errno == EXDEV;
  return Absence{live::OutcomeOf(errno), field.path(),
                 leads_out ? "leads out of the capture" : std::strerror(errno)};
}

Fact<Record> ReadDocument(FileSource const& files, std::string const& folder, RecordReader reader) {
  std::string const path = "/" + std::string(capture::kDocument), name = folder + path;
  Fact<std::string> const bytes = files.ReadFile(path, capture::kLargestDocument);
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

// An older kernel, or one that is told to refuse the call, has other reasons than what it is asked.
bool IsUnknownCall(int error) { return error == ENOSYS || error == EPERM || error == EINVAL; }

Absence NotConfined(std::string const& folder, int error) {
  if (!IsUnknownCall(error)) return live::AnnounceError(error, folder);
  return Refusal(Outcome::kNotSupported, folder,
                 "this kernel cannot keep paths below a folder (openat2)");
}

// That it could not be looked for says nothing of it.
Fact<bool> Exists(FileSource const& files, std::string const& path, Links links,
                  std::string const& folder) {
  Fact<ItemStatus> const status = files.Status(path, links);
  if (status) return true;
  Absence absence = status.absence();
  for (int const error : {ENOENT, ENOTDIR, ELOOP, EXDEV}) {
    if (absence.error == error) return false;
  }
  absence.source = folder + path;
  return absence;
}

void FindCopies(FileDescriptor const& folder, OpenedCapture& opened) {
  Fact<FileDescriptor> root = OpenRoot(folder, opened.facts);
  if (root) opened.root.emplace(std::move(root).value());
  if (!root) opened.why_no_files = CaptureMessage(root.absence());
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
  if (!again.is_open()) return NotConfined(folder, errno);
  live::Root whole(std::move(again));
  live::Files const files(whole, true);
  OpenedCapture opened;
  Fact<bool> const has_document =
      Exists(files, "/" + std::string(capture::kDocument), Links::kKeep, folder);
  if (!has_document) return has_document.absence();
  if (*has_document) {
    Fact<Record> document = ReadDocument(files, folder, reader);
    if (!document) return document.absence();
    opened.facts = Facts(std::move(document).value());
    FindCopies(top, opened);
    opened.folder = std::make_shared<live::Root const>(std::move(whole));
  } else {
    Fact<bool> const is_volume = Exists(files, kSystemVersionPath, Links::kFollow, folder);
    if (!is_volume) return is_volume.absence();
    if (!*is_volume) return NoCapture(files, folder);
    opened.is_volume = true;
    opened.root.emplace(std::move(whole));
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
