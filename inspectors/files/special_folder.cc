#include "inspectors/files/special_folder.h"

#include <array>

#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "portable/file_errors.h"

namespace {

struct SpecialFolderDomainCacheEntry {
  std::int16_t domain = 0;
  MacFileType type = 0;
  folder found;
};

// A ring: a full cache overwrites the entry that was filled first.
std::array<SpecialFolderDomainCacheEntry, 10> entries;
std::size_t used_entries = 0;
std::size_t next_entry = 0;

SpecialFolderDomainCacheEntry const* FindInCache(MacFileType code, std::int16_t domain) {
  for (std::size_t i = 0; i < used_entries; ++i) {
    if (entries[i].domain == domain && entries[i].type == code) return &entries[i];
  }
  return nullptr;
}

FileLocation Locate(MacFileType code, std::int16_t domain) {
  try {
    return FileLocation(MacintoshPlatform::MakeFileLocation(code, domain, 0));
  } catch (MacintoshPlatform::CannotCreateSpecialFolder const&) {
    throw NoSuchObject();
  }
}

void LookupFolder(folder& found, FileLocation const& location) {
  found.Get(location);
  if (!found.Item().IsDirectory()) throw NoSuchObject();
}

}  // namespace

folder FindSpecialFolder(MacFileType code, domain const& domain) {
  if (auto const* const known = FindInCache(code, domain.value)) return known->found;
  FileLocation const location = Locate(code, domain.value);
  SpecialFolderDomainCacheEntry& entry = entries[next_entry];
  // Where this throws, the entry keeps its old domain and type but not its folder.
  LookupFolder(entry.found, location);
  entry.domain = domain.value;
  entry.type = code;
  next_entry = (next_entry + 1) % entries.size();
  if (used_entries < entries.size()) ++used_entries;
  return entry.found;
}

void ClearSpecialFolderCaches(Instant&, void*) {
  used_entries = 0;
  next_entry = 0;
}

namespace {

CacheRegistration cache(ClearSpecialFolderCaches);

}  // namespace
