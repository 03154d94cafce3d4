#include "host/known_users.h"

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

#include "machine/system_files.h"

namespace gatotu::host {
namespace {

constexpr char kAccountRules[] = "/etc/login.defs";
constexpr std::uint32_t kFirstOnLinux = 1000, kFirstOnMacOS = 500;

// A sign or a number of more than 32 bits is nothing that a person has.
std::optional<std::uint32_t> NumberIn(std::string_view text) {
  std::uint32_t number = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

// "nobody" has the last number of 16 bits or of 32, or the one before.
bool IsNobody(std::uint32_t number) {
  return number == 65534 || number == 65535 || number >= 0xFFFFFFFE;
}

// The value of `UID_MIN` in the text of login.defs(5).
std::optional<std::uint32_t> FirstInRules(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r", kItem = "UID_MIN";
  std::optional<std::uint32_t> first;
  while (!text.empty()) {
    std::size_t const end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    line.remove_prefix(std::min(line.find_first_not_of(kBlank), line.size()));
    if (!line.starts_with(kItem)) continue;
    line.remove_prefix(kItem.size());
    std::size_t const start = line.find_first_not_of(kBlank);
    if (start == 0 || start == std::string_view::npos) continue;
    line.remove_prefix(start);
    first = NumberIn(line.substr(0, line.find_first_of(kBlank)));
  }
  return first;
}

std::uint32_t FirstOrdinaryNumber(machine::Machine const& machine) {
  auto const platform = machine.System().SystemPlatform();
  if (platform && *platform == machine::Platform::kMacOS) return kFirstOnMacOS;
  auto const rules = machine.Files().ReadFile(kAccountRules, machine::kLargestSystemFile);
  return rules ? FirstInRules(*rules).value_or(kFirstOnLinux) : kFirstOnLinux;
}

std::string const* TextIn(machine::RecordDictionary const& dictionary, std::string_view key) {
  machine::Record const* const value = dictionary.Find(key);
  if (value == nullptr) return nullptr;
  auto const* const bytes = value->As<machine::RecordBytes>();
  return bytes != nullptr ? &bytes->content : value->As<std::string>();
}

}  // namespace

std::vector<AccountName> UsersOfSessions(machine::Machine const& machine) {
  std::vector<AccountName> users;
  auto const console = machine.Sessions().ConsoleUser();
  machine::Record const* const list = console ? console->Find("SessionInfo") : nullptr;
  auto const* const sessions = list == nullptr ? nullptr : list->As<machine::RecordArray>();
  if (sessions == nullptr) return users;
  for (machine::Record const& session : *sessions) {
    auto const* const dictionary = session.As<machine::RecordDictionary>();
    if (dictionary == nullptr) continue;
    std::string const* const name = TextIn(*dictionary, "kCGSSessionUserNameKey");
    if (name != nullptr && !name->empty()) users.push_back(TakeApart(*name));
    if (users.size() == kMostKnownUsers) break;
  }
  return users;
}

std::vector<AccountName> LocalUsers(machine::Machine const& machine) {
  constexpr char kNumber[] = "dsAttrTypeStandard:UniqueID";
  machine::DirectoryQuery query;
  query.node = machine::DirectoryNode::kLocal;
  query.type = machine::kUserRecords;
  query.requested = {kNumber};
  std::vector<AccountName> users;
  auto const records = machine.Directory().Find(query);
  if (!records || records->empty()) return users;
  std::uint32_t const first = FirstOrdinaryNumber(machine);
  for (machine::DirectoryRecord const& record : *records) {
    machine::DirectoryAttribute const* const attribute = record.Find(kNumber);
    auto const number = attribute ? NumberIn(attribute->values.front()) : std::nullopt;
    if (!number || *number < first || IsNobody(*number)) continue;
    if (!record.name.empty()) users.push_back(TakeApart(record.name));
    if (users.size() == kMostKnownUsers) break;
  }
  return users;
}

}  // namespace gatotu::host
