#include "machine/capture/identities.h"

#include <algorithm>
#include <optional>

#include "machine/capture/values.h"
#include "machine/directory.h"
#include "machine/live/text.h"

namespace machine::capture {
namespace {

// Whose values tell one device from another, whatever else their names have.
constexpr std::string_view kDeviceKeys[] = {"serial", "uuid",       "uniq",        "wwid",
                                            "wwn",    "macaddress", "mac-address", "cid"};
constexpr char const* kUserVariables[] = {"USER", "LOGNAME", "USERNAME", "SUDO_USER"};
// What a directory has of users, and groups of their members.
constexpr std::string_view kFullNames[] = {kRecordName, "dsAttrTypeStandard:RealName",
                                           "dsAttrTypeNative:cn", "dsAttrTypeNative:displayName",
                                           "dsAttrTypeNative:distinguishedName"};
constexpr std::string_view kMembers[] = {"dsAttrTypeStandard:GroupMembership",
                                         "dsAttrTypeNative:member"};
constexpr char const* kHostVariables[] = {"HOST", "HOSTNAME"};
constexpr std::string_view kHomeFolders[] = {"/home/", "/Users/"};
constexpr std::string_view kNobodysFolders[] = {"Shared", "Guest", "lost+found"};
constexpr std::string_view kSystemUsers[] = {"root", "daemon", "nobody", "guest"};
constexpr int kDeepest = 512;  // of property lists

std::string Lowered(std::string_view text) {
  std::string lowered(text);
  for (char& each : lowered) each = each >= 'A' && each <= 'Z' ? each - 'A' + 'a' : each;
  return lowered;
}

std::string_view BytesIn(Record const* record) {
  if (record == nullptr) return {};
  if (auto const* text = record->As<std::string>()) return *text;
  if (auto const* bytes = record->As<RecordBytes>()) return bytes->content;
  return {};
}

Record const* Member(Record const* record, std::string_view key) {
  auto const* members = record == nullptr ? nullptr : record->As<RecordDictionary>();
  return members == nullptr ? nullptr : members->Find(key);
}

std::string_view FirstOf(Record const* values) {
  auto const* array = values == nullptr ? nullptr : values->As<RecordArray>();
  if (array == nullptr) return BytesIn(values);
  return array->empty() ? std::string_view() : BytesIn(&array->front());
}

std::vector<std::string_view> ValuesIn(Record const* values) {
  auto const* array = values == nullptr ? nullptr : values->As<RecordArray>();
  if (array == nullptr) return {BytesIn(values)};
  std::vector<std::string_view> texts;
  for (Record const& value : *array) texts.push_back(BytesIn(&value));
  return texts;
}

// Of "CN=Lee\, Ann,OU=People" the name as it stands there; of what is no distinguished name, all.
std::string_view NameIn(std::string_view distinguished) {
  std::size_t const start = Lowered(distinguished.substr(0, 3)) == "cn=" ? 3 : 0;
  std::size_t end = start;
  while (start != 0 && end < distinguished.size() && distinguished[end] != ',') {
    end += distinguished[end] == '\\' ? 2 : 1;
  }
  return distinguished.substr(start, start == 0 ? std::string_view::npos : end - start);
}

bool IsDeviceKey(std::string_view key) {
  std::string const lowered = Lowered(key);
  return std::ranges::any_of(
      kDeviceKeys, [&](std::string_view part) { return lowered.find(part) != std::string::npos; });
}

std::string_view TakeField(std::string_view& line, char separator) {
  std::size_t const end = std::min(line.find(separator), line.size());
  std::string_view const field = line.substr(0, end);
  line.remove_prefix(std::min(end + 1, line.size()));
  return field;
}

// As the system makes the name of a Mac on its network from the one that its owner gave.
std::string LocalHostName(std::string_view computer_name) {
  std::string name;
  for (char const each : computer_name) {
    if (each != '\'') name += each == ' ' ? '-' : each;
  }
  return name;
}

}  // namespace

Identities::Identities(RecordDictionary const& document) {
  auto const* platform = document.Find("Platform");
  first_person_ = BytesIn(platform) == "macos" ? 500 : 1000;
  for (std::string_view const user : kSystemUsers) system_accounts_.emplace(user);
  LearnUsers(document);
  LearnMachine(document);
  LearnDirectory(document);
  if (Record const* buses = document.Find("SCSIBuses")) LearnInquiries(*buses);
  if (Record const* registry = document.Find("Registry")) LearnDevices(*registry);
  if (Record const* volumes = document.Find("Volumes")) LearnDevices(*volumes);
}

void Identities::LearnUsers(RecordDictionary const& document) {
  users_.emplace(BytesIn(document.Find("CurrentUser")));
  users_.emplace(BytesIn(Member(document.Find("ConsoleUser"), "Name")));
  LearnSessions(Member(document.Find("ConsoleUser"), "SessionInfo"));
  for (char const* variable : kUserVariables) {
    users_.emplace(BytesIn(Member(document.Find("Environment"), variable)));
  }
  if (Record const* home = document.Find("CurrentHome")) LearnPath(BytesIn(home));
  if (Record const* users = document.Find("Users"); users && users->As<RecordDictionary>()) {
    for (auto const& [name, user] : users->As<RecordDictionary>()->entries()) {
      users_.insert(BytesOfKey(name));
      LearnPath(BytesIn(Member(&user, "Home")));
    }
  }
  Record const* names = document.Find("UserNames");
  if (names == nullptr || names->As<RecordDictionary>() == nullptr) return;
  for (auto const& [number, name] : names->As<RecordDictionary>()->entries()) {
    LearnAccount(BytesIn(&name), number, {});
  }
}

void Identities::LearnSessions(Record const* sessions) {
  auto const* each = sessions == nullptr ? nullptr : sessions->As<RecordArray>();
  if (each == nullptr) return;
  for (Record const& session : *each) {
    users_.emplace(BytesIn(Member(&session, "kCGSSessionUserNameKey")));
    users_.emplace(BytesIn(Member(&session, "kCGSessionLongUserNameKey")));
  }
}

void Identities::LearnHost(std::string const& name) {
  if (name.empty() || name.starts_with("localhost")) return;
  names_.insert(name);
  names_.insert(name.substr(0, name.find('.')));
}

void Identities::LearnMachine(RecordDictionary const& document) {
  LearnHost(std::string(BytesIn(document.Find("HostName"))));
  std::string_view const computer = BytesIn(document.Find("ComputerName"));
  LearnHost(std::string(computer));
  LearnHost(LocalHostName(computer));
  for (char const* variable : kHostVariables) {
    LearnHost(std::string(BytesIn(Member(document.Find("Environment"), variable))));
  }
  names_.emplace(BytesIn(document.Find("HostIdentifier")));
}

void Identities::LearnDirectory(RecordDictionary const& document) {
  Record const* const directory = document.Find("Directory");
  auto const records_of = [&](std::string_view type) {
    Record const* const records = Member(directory, type);
    auto const* array = records == nullptr ? nullptr : records->As<RecordArray>();
    return array == nullptr ? RecordArray() : *array;
  };
  for (Record const& user : records_of(kUserRecords)) {
    std::string_view const number = FirstOf(Member(&user, "dsAttrTypeStandard:UniqueID"));
    for (std::string_view const attribute : kFullNames) {
      for (std::string_view const name : ValuesIn(Member(&user, attribute))) {
        LearnAccount(FirstOf(Member(&user, kRecordName)), number, NameIn(name));
      }
    }
  }
  if (Record const* questions = document.Find("DirectoryAnswers")) LearnQuestions(*questions);
  for (Record const& group : records_of(kGroupRecords)) {
    for (std::string_view const attribute : kMembers) {
      for (std::string_view const name : ValuesIn(Member(&group, attribute))) {
        users_.emplace(NameIn(name));
      }
    }
  }
  for (Record const& computer : records_of(kComputerRecords)) {
    LearnHost(std::string(FirstOf(Member(&computer, kRecordName))));
  }
}

// Somebody asked for these, found or not: "/Search TYPE ATTRIBUTE=NAME,NAME, REQUESTED,".
void Identities::LearnQuestions(Record const& questions) {
  auto const* members = questions.As<RecordDictionary>();
  if (members == nullptr) return;
  for (auto const& [key, answer] : members->entries()) {
    std::string_view rest = key;
    TakeField(rest, ' ');
    std::string_view const type = TakeField(rest, ' ');
    std::string_view names = TakeField(rest, ' ');
    bool const is_by_name = type == kUserRecords && TakeField(names, '=') == kRecordName;
    while (is_by_name && !names.empty()) {
      std::string const name = BytesOfKey(TakeField(names, ','));
      users_.insert(name.starts_with('=') ? name.substr(1) : name);
    }
  }
}

void Identities::LearnAccount(std::string_view name, std::string_view number,
                              std::string_view full_name) {
  auto const known = live::ParseNumber<std::int64_t>(number);
  constexpr std::int64_t kNobody = 65534;
  bool const is_system = known && (*known < std::int64_t{first_person_} || *known == kNobody ||
                                   *known > UINT32_MAX - 2);
  (is_system ? system_accounts_ : users_).emplace(name);
  if (!is_system && full_name != name) names_.emplace(full_name);
}

void Identities::LearnAccounts(std::string_view accounts) {
  while (!accounts.empty()) {
    std::string_view line = TakeField(accounts, '\n');
    std::string_view const name = TakeField(line, ':');
    TakeField(line, ':');
    std::string_view const number = TakeField(line, ':');
    TakeField(line, ':');
    std::string_view about = TakeField(line, ':');
    if (!name.empty() && name.front() != '#') LearnAccount(name, number, TakeField(about, ','));
  }
}

void Identities::LearnPath(std::string_view path) {
  for (std::string_view const folder : kHomeFolders) {
    if (!path.starts_with(folder)) continue;
    std::string_view rest = path.substr(folder.size());
    std::string_view const name = TakeField(rest, '/');
    bool const is_somebodys = name.empty() || name.front() != '.';
    bool const is_known = std::ranges::find(kNobodysFolders, name) != std::end(kNobodysFolders);
    if (is_somebodys && !is_known) users_.emplace(name);
  }
}

// What has no digit is said where there is no number: "None". Addresses of slots, which
// some drivers give for a number, are the same on many machines.
void Identities::LearnSerials(std::string_view text) {
  constexpr std::size_t kLeast = 4;
  while (!text.empty()) {
    std::string_view const serial = TakeField(text, '\0');
    bool const has_digit = serial.find_first_of("123456789") != std::string_view::npos;
    bool const is_slot =
        serial.find(':') != std::string_view::npos && serial.find('.') != std::string_view::npos;
    if (serial.size() >= kLeast && has_digit && !is_slot) names_.emplace(serial);
  }
}

void Identities::LearnDevices(Record const& record, std::string_view key, int depth) {
  if (depth > kDeepest) return;
  if (auto const* members = record.As<RecordDictionary>()) {
    for (auto const& [name, value] : members->entries()) LearnDevices(value, name, depth + 1);
  } else if (auto const* items = record.As<RecordArray>()) {
    for (Record const& item : *items) LearnDevices(item, key, depth + 1);
  } else if (IsDeviceKey(key)) {
    std::string_view const bytes = BytesIn(&record);
    bool const is_text = std::ranges::all_of(
        bytes, [](char each) { return each == '\0' || (each >= ' ' && each <= '~'); });
    if (is_text) LearnSerials(bytes);
    if (!is_text) bytes_.emplace(bytes);
  }
}

// Where standard inquiry data leave room for the vendor, disks have their number.
void Identities::LearnInquiries(Record const& record) {
  if (auto const* items = record.As<RecordArray>()) {
    for (Record const& item : *items) LearnInquiries(item);
  } else if (auto const* members = record.As<RecordDictionary>()) {
    for (auto const& [name, value] : members->entries()) {
      std::string_view const bytes = BytesIn(&value);
      bool const has_room = name == kInquiry && bytes.size() > kVendorBytesStart;
      if (has_room) LearnSerials(bytes.substr(kVendorBytesStart, kVendorBytesSize));
      if (value.As<RecordArray>() != nullptr) LearnInquiries(value);
    }
  }
}

void Identities::AddTo(Pseudonyms& pseudonyms) const {
  for (std::string const& user : users_) {
    bool const is_system = system_accounts_.contains(user) || user.starts_with('_');
    if (!is_system) pseudonyms.AddName(user);
  }
  for (std::string const& name : names_) pseudonyms.AddName(name);
  for (std::string const& bytes : bytes_) pseudonyms.AddBytes(bytes);
}

}  // namespace machine::capture
