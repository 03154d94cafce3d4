#include "host/kept_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

namespace gatotu::host {
namespace {

constexpr std::size_t kMostInMemory = std::size_t{128} << 10;
constexpr std::size_t kMostTaken = std::size_t{64} << 10;

machine::FileDescriptor MakeNamelessFile() {
  char const* const folder = std::getenv("TMPDIR");
  std::string path = folder != nullptr && *folder != '\0' ? folder : "/tmp";
  path += "/gatotu-XXXXXX";
  machine::FileDescriptor file(::mkostemp(path.data(), O_CLOEXEC));
  if (file.is_open()) ::unlink(path.c_str());
  return file;
}

}  // namespace

bool KeptOutput::Append(std::string_view bytes) {
  bool const fits = memory_.size() + bytes.size() <= kMostInMemory;
  if (!file_.is_open() && !fits && !MoveToFile()) return false;
  if (!file_.is_open()) {
    memory_ += bytes;
  } else if (!WriteToFile(bytes, size_)) {
    return false;
  }
  FindRecords(bytes);
  size_ += bytes.size();
  return true;
}

void KeptOutput::FindRecords(std::string_view bytes) {
  if (records_ == Records::kLines) {
    std::size_t const last = bytes.rfind('\n');
    if (last != std::string_view::npos) whole_ = size_ + last + 1;
    return;
  }
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] == '"') is_quoted_ = !is_quoted_;
    if (bytes[i] == '\n' && !is_quoted_) whole_ = size_ + i + 1;
  }
}

bool KeptOutput::Take(std::string& bytes) {
  bytes.resize(std::min<std::uint64_t>(kMostTaken, whole_ - taken_));
  if (bytes.empty()) return true;
  if (!file_.is_open()) {
    memory_.copy(bytes.data(), bytes.size(), taken_);
  } else if (!ReadFromFile(bytes, taken_)) {
    return false;
  }
  taken_ += bytes.size();
  return taken_ < whole_ || Forget();
}

void KeptOutput::DropRest() {
  if (!file_.is_open()) memory_.resize(whole_);
  size_ = whole_;
  is_quoted_ = false;
}

void KeptOutput::DropAll() { *this = KeptOutput(records_); }

// Of what was taken nothing is kept, and no file for the begun record that is left.
bool KeptOutput::Forget() {
  if (!file_.is_open()) {
    memory_.erase(0, taken_);
  } else {
    if (Waiting() > kMostInMemory) return true;
    memory_.resize(Waiting());
    if (!ReadFromFile(memory_, taken_)) return false;
    file_ = {};
  }
  size_ -= taken_;
  whole_ = taken_ = 0;
  return true;
}

bool KeptOutput::MoveToFile() {
  file_ = MakeNamelessFile();
  if (!file_.is_open() || !WriteToFile(memory_, 0)) return false;
  memory_ = {};
  return true;
}

bool KeptOutput::WriteToFile(std::string_view bytes, std::uint64_t at) {
  while (!bytes.empty()) {
    ssize_t const written =
        ::pwrite(file_.number(), bytes.data(), bytes.size(), static_cast<off_t>(at));
    if (written < 0 && errno != EINTR) return false;
    if (written <= 0) continue;
    bytes.remove_prefix(static_cast<std::size_t>(written));
    at += static_cast<std::uint64_t>(written);
  }
  return true;
}

bool KeptOutput::ReadFromFile(std::string& bytes, std::uint64_t at) const {
  for (std::size_t done = 0; done < bytes.size();) {
    ssize_t const got = ::pread(file_.number(), bytes.data() + done, bytes.size() - done,
                                static_cast<off_t>(at + done));
    if (got == 0) errno = EIO;
    if (got == 0 || (got < 0 && errno != EINTR)) return false;
    if (got > 0) done += static_cast<std::size_t>(got);
  }
  return true;
}

}  // namespace gatotu::host
