#include "machine/capture/directory_volume.h"

#include <algorithm>

#include "machine/system_files.h"

namespace machine::capture {
namespace {

constexpr char kNode[] = "/var/db/dslocal/nodes/Default/";
constexpr std::string_view kSuffix = ".plist";
constexpr std::size_t kMostRecords = 50'000;

constexpr std::pair<std::string_view, std::string_view> kFolders[] = {
    {kUserRecords, "users"}, {kGroupRecords, "groups"}, {kComputerRecords, "computers"}};

// The file's keys that have standard names; others are the node's own.
constexpr std::pair<std::string_view, std::string_view> kStandardNames[] = {
    {"name", "RecordName"},           {"uid", "UniqueID"},
    {"gid", "PrimaryGroupID"},        {"home", "NFSHomeDirectory"},
    {"realname", "RealName"},         {"shell", "UserShell"},
    {"generateduid", "GeneratedUID"}, {"users", "GroupMembership"},
    {"groupmembers", "GroupMembers"}, {"nestedgroups", "NestedGroups"}};

// The service hands these to nobody, whoever may read the files.
constexpr std::string_view kSecrets[] = {"ShadowHashData", "HeimdalSRPKey", "KerberosKeys",
                                         "passwd"};

std::string AttributeName(std::string_view key) {
  for (auto const& [known, standard] : kStandardNames) {
    if (key == known) return std::string(kStandardPrefix).append(standard);
  }
  return std::string(kNativePrefix).append(key);
}

// Values that are no bytes, such as dictionaries, have no form in the directory.
DirectoryRecord RecordOf(RecordDictionary const& entries, std::string const& type) {
  DirectoryRecord record = {type, {}, kLocalNode, {}};
  for (auto const& [key, value] : entries.entries()) {
    auto const* values = value.As<RecordArray>();
    if (values == nullptr || std::ranges::count(kSecrets, key) != 0) continue;
    std::string const name = AttributeName(key);
    for (Record const& single : *values) {
      if (auto const* text = single.As<std::string>()) record.Add(name, *text);
      if (auto const* bytes = single.As<RecordBytes>()) record.Add(name, bytes->content);
    }
  }
  if (DirectoryAttribute const* const name = record.Find(kRecordName)) {
    record.name = name->values.front();
  }
  record.Add(kRecordType, type);
  record.Add(kRecordNode, record.node);
  return record;
}

}  // namespace

void DirectoryVolume::OfferFile(std::string const& path, DirectoryQuery const& query,
                                DirectoryAnswer& answer) const {
  Fact<std::string> const bytes = files_.ReadFile(path, kLargestSystemFile);
  if (!bytes) return;
  Fact<Record> const document = reader_(*bytes, path);
  auto const* entries = document ? document->As<RecordDictionary>() : nullptr;
  if (entries == nullptr) return Announce(path, Outcome::kMalformed);
  DirectoryRecord record = RecordOf(*entries, query.type);
  if (record.name.empty()) return Announce(path, Outcome::kMalformed);
  if (Matches(record, query)) answer.Offer(std::move(record));
}

// In the order of the files' names: a folder's own order may differ from copy to copy.
Fact<Done> DirectoryVolume::Offer(DirectoryQuery const& query, DirectoryAnswer& answer) const {
  auto const place = std::ranges::find(kFolders, std::string_view(query.type),
                                       [](auto const& entry) { return entry.first; });
  if (place == std::end(kFolders)) return Done{};
  std::string const path = std::string(kNode).append(place->second);
  auto const folder = files_.OpenFolder(path);
  if (!folder) return folder.absence();
  std::vector<std::string> names;
  for (;;) {
    auto const entry = (*folder)->Next(Detail::kKind);
    if (!entry) return entry.absence();
    if (*entry == nullptr) break;
    bool const is_record =
        (*entry)->name.ends_with(kSuffix) && (*entry)->item.status.kind == ItemKind::kFile;
    if (is_record) names.emplace_back((*entry)->name);
    if (names.size() > kMostRecords) return Absence{Outcome::kMalformed, path, "too many records"};
  }
  std::ranges::sort(names);
  for (std::string const& name : names) {
    if (answer.is_full()) break;
    OfferFile(path + "/" + name, query, answer);
  }
  return Done{};
}

}  // namespace machine::capture
