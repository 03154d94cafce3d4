#include "host/directory_cache.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <exception>
#include <memory>

#include "host/known_users.h"
#include "machine/file_descriptor.h"
#include "machine/machine.h"
#include "portable/ascii.h"

namespace gatotu::host {
namespace {

constexpr std::string_view kUserPrefix = "user-", kSuffix = ".xml";
// A file's name has 255 bytes; there is room for the check sum and for a hidden file beside it.
constexpr std::size_t kLongestEscaped = 160;

std::string Escaped(std::string_view name) {
  constexpr char kDigits[] = "0123456789abcdef";
  constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyz0123456789-._";
  std::string escaped;
  for (char const character : name) {
    auto const byte = static_cast<unsigned char>(character);
    if (kPlain.find(character) != std::string_view::npos) {
      escaped += character;
    } else {
      escaped += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return escaped;
}

// FNV-1a. Names that meet share a file, in which the other's record is not believed.
std::string CheckSum(std::string_view name) {
  std::uint64_t sum = 14695981039346656037u;
  for (char const character : name)
    sum = (sum ^ static_cast<unsigned char>(character)) * 1099511628211u;
  return std::to_string(sum);
}

// With the folders above it.
bool MakeFolder(std::string const& path) {
  if (::mkdir(path.c_str(), 0700) == 0 || errno == EEXIST) return true;
  if (errno != ENOENT) return false;
  std::size_t const slash = path.find_last_not_of('/');
  std::size_t const end = slash == std::string::npos ? slash : path.rfind('/', slash);
  if (end == 0 || end == std::string::npos) return false;
  return MakeFolder(path.substr(0, end)) && (::mkdir(path.c_str(), 0700) == 0 || errno == EEXIST);
}

std::string_view EndOf(ActiveDirectoryLocalComputer const&) { return "</Computer>"; }
std::string_view EndOf(ActiveDirectoryLocalUser const&) { return "</User>"; }

// What a run has kept: anything else was not written by one. One from the future would never be
// refreshed, after the clock was set back.
bool IsBelievable(ActiveDirectoryBase const& record) {
  auto const now = machine::CurrentMachine().Clock().MicrosecondsSince1970();
  return record.GetCacheState() == kFilledFromDirectory &&
         (!now || record.GetLastSampleTime().microseconds <= *now);
}

// Reading XML goes on to wherever the text ends, so that a part of a record looks like one, and
// what is behind a "<" or "&" of some name is taken for something else. Either way less would be
// written again; a time takes as many bytes in every time zone.
template <class Account>
bool IsWhole(Account const& account, std::string const& text) {
  machine::Unobserved const unobserved;  // no answer rests on the zone
  return text.ends_with(EndOf(account)) && account.ToXml().size() == text.size();
}

// A damaged file is as good as none.
template <class Account>
bool LoadFile(std::string const& path, Account& account) {
  if (path.empty()) return false;
  auto const text = machine::CurrentMachine().Files().ReadFile(path, kLargestRecordFile);
  if (!text) return false;
  try {
    account.FromXml(*text);
    return IsWhole(account, *text) && IsBelievable(account);
  } catch (...) {
    return false;
  }
}

}  // namespace

std::string CacheFileName(std::string_view user) {
  std::string name = Escaped(user);
  if (name.size() > kLongestEscaped) {
    name.resize(kLongestEscaped);
    name += '~' + CheckSum(user);
  }
  return std::string(kUserPrefix) + name + std::string(kSuffix);
}

std::string DirectoryCache::ComputerFile() const {
  return folder_.empty() ? "" : folder_ + "/computer.xml";
}

std::string DirectoryCache::UserFile(std::string_view name) const {
  return folder_.empty() || name.empty() ? "" : folder_ + '/' + CacheFileName(name);
}

bool DirectoryCache::Find(std::string const& path, FileLocation& out) {
  if (path.empty()) return false;
  try {
    out = MakeFileLocation(path.c_str());
    return true;
  } catch (std::exception const&) {
    return false;
  }
}

bool DirectoryCache::IsFolderSafe() const {
  struct stat status;
  if (folder_.empty() || ::stat(folder_.c_str(), &status) != 0) return false;
  bool const is_ours = status.st_uid == ::geteuid() || status.st_uid == 0;
  bool const is_safe =
      S_ISDIR(status.st_mode) && is_ours && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
  if (!is_safe) machine::Announce(folder_, machine::Outcome::kPermissionRefused);
  return is_safe;
}

bool DirectoryCache::Load(ActiveDirectoryLocalComputer& computer) const {
  ActiveDirectoryLocalComputer kept;
  if (!IsFolderSafe() || !LoadFile(ComputerFile(), kept)) return false;
  computer = std::move(kept);
  return true;
}

bool DirectoryCache::Load(ActiveDirectoryLocalUser& user) const {
  ActiveDirectoryLocalUser kept;
  if (!IsFolderSafe() || !LoadFile(UserFile(user.GetName()), kept)) return false;
  bool const is_of_domain =
      user.GetDomain().empty() ||
      Ascii::EqualIgnoringCase(ConstData(kept.GetDomain()), ConstData(user.GetDomain()));
  if (kept.GetName() != user.GetName() || !is_of_domain) return false;
  user = std::move(kept);
  return true;
}

std::vector<ActiveDirectoryLocalUser> DirectoryCache::LoadUsers() const {
  std::vector<ActiveDirectoryLocalUser> users;
  if (!IsFolderSafe()) return users;
  std::unique_ptr<DIR, int (*)(DIR*)> const folder(::opendir(folder_.c_str()), &::closedir);
  if (folder == nullptr) return users;
  std::vector<std::string> names;
  while (dirent const* const entry = ::readdir(folder.get())) {
    std::string_view const name = entry->d_name;
    if (!name.starts_with(kUserPrefix) || !name.ends_with(kSuffix)) continue;
    names.emplace_back(name);
    if (names.size() == kMostKnownUsers) break;
  }
  std::sort(names.begin(), names.end());
  for (std::string const& name : names) {
    ActiveDirectoryLocalUser user;
    bool const is_one = LoadFile(folder_ + '/' + name, user) && !user.GetName().empty();
    if (is_one && CacheFileName(user.GetName()) == name) users.push_back(std::move(user));
  }
  return users;
}

// What takes the place of a file has that file's mode, so there is an empty one first. When nothing
// comes of it, that is no record.
bool DirectoryCache::Prepare(std::string const& file) const {
  if (file.empty() || !MakeFolder(folder_) || !IsFolderSafe()) return false;
  machine::FileDescriptor const empty(
      ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
  return empty.is_open() || errno == EEXIST;
}

}  // namespace gatotu::host
