#include <CoreServices/Folders.h>

#include <cerrno>
#include <climits>

#include "frameworks/CoreServices/file_references.h"
#include "frameworks/CoreServices/special_folder_paths.h"
#include "frameworks/CoreServices/special_folders.h"

namespace {

using machine::Links;
using machine::Outcome;

struct SearchedDomains {
  FSVolumeRefNum number;
  char const* name;
  DomainSet order[3];  // zeros at the end
};
constexpr SearchedDomains kSearches[] = {
    {kOnSystemDisk, "on the system disk", {kInSystem, kInLocal}},
    {kOnAppropriateDisk, "on the appropriate disk", {kInUser, kInLocal, kInSystem}},
    {kSystemDomain, "of the system", {kInSystem}},
    {kLocalDomain, "of the local domain", {kInLocal}},
    {kNetworkDomain, "of the network", {kInNetwork}},
    {kUserDomain, "of the user", {kInUser}},
    {kClassicDomain, "of the classic domain", {kInClassic}},
};

SearchedDomains const* FindSearch(FSVolumeRefNum number) {
  for (SearchedDomains const& search : kSearches) {
    if (search.number == number) return &search;
  }
  return nullptr;
}

// Codes are Mac Roman; of its upper half they use one character.
std::string TextOf(OSType type) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    char const byte = static_cast<char>(type >> shift);
    bool const is_plain = byte >= ' ' && byte <= '~';
    text += byte == '\xC4' ? "\xC6\x92" : std::string(1, is_plain ? byte : '?');
  }
  return text;
}

bool IsMissing(OSErr code) { return code == fnfErr || code == dirNFErr; }

OSErr MakeRef(std::string const& path, FSRef* ref) {
  return static_cast<OSErr>(
      FSPathMakeRef(reinterpret_cast<UInt8 const*>(path.c_str()), ref, nullptr));
}

// With the folders above it that are missing.
OSErr CreateFolder(std::string const& path, std::uint32_t mode) {
  if (MachineFiles().is_read_only()) return vLckdErr;
  if (path.size() >= PATH_MAX) return bdNamErr;
  for (std::size_t end = 0; end != std::string::npos;) {
    end = path.find('/', end + 1);
    std::string const folder = path.substr(0, end);
    if (MachineFiles().Status(folder, Links::kFollow)) continue;
    auto const made = MachineFiles().CreateFolder(folder, mode);
    if (!made && made.absence().error != EEXIST) return CodeOf(made.absence(), folder);
  }
  return noErr;
}

// One search through the table of a platform.
class Search {
 public:
  Search(SpecialFolderTable const& table, OSType type) : table_(table), type_(type) {}

  bool FindIn(DomainSet domain, FSRef* ref) {
    // A volume without the classic system has nothing of that domain.
    if (domain == kInClassic && !MachineFiles().Status("/System Folder", Links::kFollow)) {
      return false;
    }
    for (SpecialFolderRow const& row : table_.rows) {
      bool const is_asked = row.type == type_ && (row.domains & domain) != 0;
      if (is_asked && FindRow(row, domain, ref)) return true;
    }
    return false;
  }

  OSErr CreateFirst(FSRef* ref) const {
    if (first_path_.empty()) return fnfErr;
    std::uint32_t const mode = first_domain_ == kInUser ? 0700 : 0755;
    OSErr const code = CreateFolder(first_path_, mode);
    return code == noErr ? MakeRef(first_path_, ref) : code;
  }

  OSErr code() const { return code_; }
  Outcome reason() const { return reason_; }

 private:
  bool FindRow(SpecialFolderRow const& row, DomainSet domain, FSRef* ref) {
    auto const path = PathOfSpecialFolder(table_, row, domain);
    if (!path) {
      reason_ = path.outcome();
      return false;
    }
    OSErr const code = MakeRef(*path, ref);
    if (code == noErr) return true;
    if (!IsMissing(code)) code_ = code;
    if (first_path_.empty()) {
      first_path_ = *path;
      first_domain_ = domain;
    }
    return false;
  }

  SpecialFolderTable const& table_;
  OSType const type_;
  std::string first_path_;
  DomainSet first_domain_ = 0;
  OSErr code_ = fnfErr;
  Outcome reason_ = Outcome::kAbsent;
};

// The places that were looked at are announced by then; this says for what, and tells of folders
// that have no place to look at.
OSErr AnnounceMissing(OSType type, SearchedDomains const& search, OSErr code, Outcome reason) {
  if (machine::CurrentSourceObserver() != nullptr) {
    machine::Announce("special folder " + TextOf(type) + " " + search.name, reason);
  }
  return code;
}

}  // namespace

OSErr FSFindFolder(FSVolumeRefNum vRefNum, OSType folderType, Boolean createFolder,
                   FSRef* foundRef) {
  SearchedDomains const* const domains = FindSearch(vRefNum);
  if (foundRef == nullptr) return paramErr;
  if (domains == nullptr) return fnfErr;
  auto const platform = machine::CurrentMachine().System().SystemPlatform();
  if (!platform) return AnnounceMissing(folderType, *domains, fnfErr, platform.outcome());
  Search search(*platform == machine::Platform::kMacOS ? kMacOSFolders : kLinuxFolders, folderType);
  for (DomainSet const domain : domains->order) {
    if (domain != 0 && search.FindIn(domain, foundRef)) return noErr;
  }
  OSErr const code = createFolder ? search.CreateFirst(foundRef) : search.code();
  if (code == noErr) return noErr;
  return AnnounceMissing(folderType, *domains, code, search.reason());
}
