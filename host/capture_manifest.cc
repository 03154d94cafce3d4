#include "host/capture_manifest.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <system_error>

#include "machine/file_descriptor.h"
#include "portable_inspectors/digest_engine.h"

namespace gatotu::host {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kFolder = "folder", kLink = "link ", kHole = "hole ", kOther = "other";
constexpr std::size_t kDigestSize = 64;

// Something in the folder cannot be read.
struct Failure {
  std::string message;
};

[[noreturn]] void Fail(std::string const& path) {
  throw Failure{path + ": " + std::strerror(errno)};
}

std::string Hexadecimal(std::string_view bytes) {
  std::string text;
  for (unsigned char const byte : bytes) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return text;
}

std::string DigestOf(std::string_view bytes) {
  auto const digest = TheDigestEngine().Start(DigestAlgorithm::kSha256);
  digest->Add(bytes.data(), bytes.size());
  return Hexadecimal(digest->Finish());
}

// A regular file, whatever took its place since it was looked at.
machine::FileDescriptor Open(std::string const& path) {
  machine::FileDescriptor file(
      ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status = {};
  if (!file.is_open() || ::fstat(file.number(), &status) != 0) Fail(path);
  if (!S_ISREG(status.st_mode)) throw Failure{path + ": became something else meanwhile"};
  return file;
}

template <typename Visit>
void ForEachPiece(machine::FileDescriptor const& file, std::string const& path, Visit&& visit) {
  constexpr std::size_t kPiece = std::size_t{1} << 17;
  std::unique_ptr<char[]> const piece(new char[kPiece]);
  for (;;) {
    ssize_t const got = ::read(file.number(), piece.get(), kPiece);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) Fail(path);
    if (got == 0 || !visit(std::string_view(piece.get(), static_cast<std::size_t>(got)))) return;
  }
}

// A file whose content was not recorded may be as large as a disk.
std::string EntryOfFile(std::string const& path) {
  machine::FileDescriptor const file = Open(path);
  off_t const size = ::lseek(file.number(), 0, SEEK_END);
  bool const is_hole = size > 0 && ::lseek(file.number(), 0, SEEK_DATA) < 0 && errno == ENXIO;
  if (is_hole) return std::string(kHole) + std::to_string(size);
  ::lseek(file.number(), 0, SEEK_SET);
  auto const digest = TheDigestEngine().Start(DigestAlgorithm::kSha256);
  ForEachPiece(file, path, [&](std::string_view piece) {
    digest->Add(piece.data(), piece.size());
    return true;
  });
  return Hexadecimal(digest->Finish());
}

std::string EntryOf(fs::directory_entry const& entry) {
  fs::file_status const status = entry.symlink_status();
  if (status.type() == fs::file_type::directory) return std::string(kFolder);
  if (status.type() == fs::file_type::regular) return EntryOfFile(entry.path());
  if (status.type() != fs::file_type::symlink) return std::string(kOther);
  return std::string(kLink) + DigestOf(fs::read_symlink(entry.path()).native());
}

Manifest ManifestOf(std::string const& folder) {
  Manifest manifest;
  for (fs::directory_entry const& entry : fs::recursive_directory_iterator(folder)) {
    std::string const path = entry.path().lexically_relative(folder);
    if (path != kManifest) manifest[path] = EntryOf(entry);
  }
  return manifest;
}

// Some disks fill the holes of what is copied to them.
bool IsStillHole(std::string const& path, std::string_view recorded) {
  if (!recorded.starts_with(kHole)) return false;
  std::uint64_t size = 0;
  bool is_zero = true;
  ForEachPiece(Open(path), path, [&](std::string_view piece) {
    size += piece.size();
    is_zero = piece.find_first_not_of('\0') == std::string_view::npos;
    return is_zero;
  });
  return is_zero && recorded.substr(kHole.size()) == std::to_string(size);
}

bool IsDigest(std::string_view text) {
  return text.size() == kDigestSize &&
         text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

struct Escape {
  char character, letter;
};
constexpr Escape kEscapes[] = {{'\\', '\\'}, {'\n', 'n'}, {'\r', 'r'}};

std::string Escaped(std::string_view name) {
  std::string escaped;
  for (char const each : name) {
    auto const* found = std::ranges::find(kEscapes, each, &Escape::character);
    if (found == std::end(kEscapes)) escaped += each;
    if (found != std::end(kEscapes)) escaped += {'\\', found->letter};
  }
  return escaped;
}

std::string Unescaped(std::string_view name) {
  std::string plain;
  for (std::size_t i = 0; i < name.size(); ++i) {
    bool const is_escape = name[i] == '\\' && i + 1 < name.size();
    auto const* found =
        is_escape ? std::ranges::find(kEscapes, name[i + 1], &Escape::letter) : std::end(kEscapes);
    plain += found == std::end(kEscapes) ? name[i] : found->character;
    if (found != std::end(kEscapes)) ++i;
  }
  return plain;
}

bool ParseLine(std::string_view line, Manifest& manifest) {
  bool const is_comment = line.starts_with("# ");
  bool const is_escaped = is_comment || line.starts_with('\\');
  line.remove_prefix(is_comment ? 2 : is_escaped ? 1 : 0);
  std::size_t const end = line.find("  ");
  if (end == std::string_view::npos || end + 2 == line.size()) return false;
  std::string_view const entry = line.substr(0, end), name = line.substr(end + 2);
  if (!is_comment && !IsDigest(entry)) return false;
  std::string path = is_escaped ? Unescaped(name) : std::string(name);
  return manifest.emplace(std::move(path), entry).second;
}

ManifestDifferences Compare(std::string const& folder, Manifest const& recorded,
                            Manifest const& found) {
  ManifestDifferences differences;
  differences.count = recorded.size();
  for (auto const& [path, entry] : recorded) {
    auto const now = found.find(path);
    if (now == found.end()) {
      differences.missing.push_back(path);
    } else if (now->second != entry &&
               !(IsDigest(now->second) && IsStillHole(folder + "/" + path, entry))) {
      differences.altered.push_back(path);
    }
  }
  for (auto const& [path, entry] : found) {
    if (!recorded.contains(path)) differences.added.push_back(path);
  }
  return differences;
}

// Of some two million files. What is larger is not read into memory.
std::string ReadManifest(std::string const& path) {
  constexpr std::size_t kLargest = std::size_t{256} << 20;
  std::string text;
  ForEachPiece(Open(path), path, [&](std::string_view piece) {
    if (text.size() + piece.size() > kLargest) throw Failure{path + ": larger than 256 MiB"};
    text += piece;
    return true;
  });
  return text;
}

bool WriteAndFlush(machine::FileDescriptor const& file, std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t const put = ::write(file.number(), bytes.data(), bytes.size());
    if (put < 0 && errno != EINTR) return false;
    if (put > 0) bytes.remove_prefix(static_cast<std::size_t>(put));
  }
  return ::fsync(file.number()) == 0;
}

}  // namespace

std::string TextOf(Manifest const& manifest) {
  std::string text;
  for (auto const& [path, entry] : manifest) {
    std::string const name = Escaped(path);
    bool const is_digest = IsDigest(entry);
    text += !is_digest ? "# " : name != path ? "\\" : "";
    text += entry + "  " + name + "\n";
  }
  return text;
}

std::optional<Manifest> ParseManifest(std::string_view text) {
  Manifest manifest;
  while (!text.empty()) {
    std::size_t const end = text.find('\n');
    if (!ParseLine(text.substr(0, end), manifest)) return std::nullopt;
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return manifest;
}

std::optional<std::string> WriteManifest(std::string const& folder) try {
  std::string const text = TextOf(ManifestOf(folder));
  std::string const path = folder + "/" + kManifest, unfinished = path + ".unfinished";
  constexpr mode_t kMode = 0600;  // as all of a capture
  machine::FileDescriptor const file(
      ::open(unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kMode));
  if (!file.is_open() || !WriteAndFlush(file, text)) Fail(unfinished);
  if (::rename(unfinished.c_str(), path.c_str()) != 0) Fail(path);
  return std::nullopt;
} catch (Failure const& failure) {
  return failure.message;
} catch (std::exception const& error) {
  return error.what();
}

ManifestCheck CheckManifest(std::string const& folder) try {
  std::string const path = folder + "/" + kManifest;
  auto const recorded = ParseManifest(ReadManifest(path));
  if (!recorded) return path + ": not a list of digests";
  return Compare(folder, *recorded, ManifestOf(folder));
} catch (Failure const& failure) {
  return failure.message;
} catch (std::exception const& error) {
  return std::string(error.what());
}

}  // namespace gatotu::host
