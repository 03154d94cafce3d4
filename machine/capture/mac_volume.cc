#include "machine/capture/mac_volume.h"

#include "machine/live/text.h"
#include "machine/system_files.h"

namespace machine::capture {
namespace {

constexpr char kPreferences[] = "/Library/Preferences/SystemConfiguration/preferences.plist";
constexpr char kUsers[] = "/var/db/dslocal/nodes/Default/users";
constexpr char kLabel[] = "/System/Library/CoreServices/.disk_label.contentDetails";
constexpr std::string_view kListSuffix = ".plist";

Field RootOf(Record const& record, std::string const& path) { return Field(&record, path + ": "); }

}  // namespace

Fact<Record> MacVolume::Read(std::string const& path) const {
  Fact<std::string> const bytes = files_.ReadFile(path, kLargestSystemFile);
  if (!bytes) return bytes.absence();
  Fact<Record> record = reader_(*bytes, path);
  if (!record) Announce(path, record.outcome());
  return record;
}

// Only its texts: the format has nothing else.
Fact<SystemVersion> MacVolume::Version() const {
  Fact<Record> const record = Read(kSystemVersionPath);
  if (!record) return record.absence();
  auto const* entries = record->As<RecordDictionary>();
  if (entries == nullptr) return RootOf(*record, kSystemVersionPath).Malformed("not a dictionary");
  SystemVersion version;
  for (auto const& [key, value] : entries->entries()) {
    if (auto const* text = value.As<std::string>()) version.emplace_back(key, *text);
  }
  return version;
}

Fact<std::string> MacVolume::Label() const {
  constexpr std::size_t kMostBytes = 4096;
  Fact<std::string> const text = files_.ReadFile(kLabel, kMostBytes);
  if (!text) return text;
  std::string const label(live::Trim(*text));
  if (label.empty()) return Absence{Outcome::kAbsent, kLabel, "empty"};
  return label;
}

Fact<std::string> MacVolume::ComputerName() const {
  Fact<Record> const record = Read(kPreferences);
  if (!record) return record.absence();
  return RootOf(*record, kPreferences)["System"]["System"]["ComputerName"].Text();
}

Fact<std::string> MacVolume::HostName() const {
  Fact<Record> const record = Read(kPreferences);
  if (!record) return record.absence();
  Field const system = RootOf(*record, kPreferences)["System"];
  if (Field const name = system["System"]["HostName"]; name.exists()) return name.Text();
  return system["Network"]["HostNames"]["LocalHostName"].Text();
}

Fact<std::string> MacVolume::HomeOf(std::string const& user) const {
  std::string const path = std::string(kUsers) + "/" + user + std::string(kListSuffix);
  Fact<Record> const record = Read(path);
  if (!record) return record.absence();
  Field const homes = RootOf(*record, path)["home"];
  Fact<std::string> home = homes.count() == 0 ? homes.Text() : homes[std::size_t{0}].Text();
  if (home && !home->starts_with('/')) return homes.Malformed("not an absolute path");
  return home;
}

Fact<std::vector<std::string>> MacVolume::UserNames() const {
  auto const folder = files_.OpenFolder(kUsers);
  if (!folder) return folder.absence();
  std::vector<std::string> names;
  for (;;) {
    auto const entry = (*folder)->Next(Detail::kKind);
    if (!entry) return entry.absence();
    if (*entry == nullptr) return names;
    std::string_view const name = (*entry)->name;
    if (!name.ends_with(kListSuffix) || (*entry)->item.status.kind != ItemKind::kFile) continue;
    names.emplace_back(name.substr(0, name.size() - kListSuffix.size()));
  }
}

}  // namespace machine::capture
