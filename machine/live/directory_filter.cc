#include "machine/live/directory_filter.h"

#include <algorithm>
#include <utility>

#include "machine/directory_records.h"

namespace machine::live {
namespace {

constexpr char kName[] = "sAMAccountName";

constexpr std::pair<std::string_view, std::string_view> kStandardNames[] = {
    {"RecordName", kName},
    {"RealName", "displayName"},
    {"UniqueID", "uidNumber"},
    {"PrimaryGroupID", "gidNumber"},
    {"NFSHomeDirectory", "unixHomeDirectory"},
    {"UserShell", "loginShell"}};

constexpr std::pair<std::string_view, std::string_view> kKinds[] = {
    {kUserRecords, "(objectCategory=person)(objectClass=user)"},
    {kGroupRecords, "(objectClass=group)"},
    {kComputerRecords, "(objectClass=computer)"}};

constexpr std::string_view kComputed[] = {
    "tokenGroups",          "tokenGroupsGlobalAndUniversal", "tokenGroupsNoGCAcceptable",
    "msDS-TokenGroupNames", "msDS-memberOfTransitive",       "msDS-memberTransitive"};

bool IsAttributeName(std::string_view name) {
  constexpr std::string_view kAllowed =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-";
  return !name.empty() && name.find_first_not_of(kAllowed) == std::string_view::npos;
}

bool IsComputed(std::string_view name) {
  return std::ranges::any_of(
      kComputed, [name](std::string_view computed) { return EqualIgnoringCase(computed, name); });
}

// Empty where LDAP has no such attribute.
std::string_view LdapName(std::string_view attribute) {
  if (attribute.starts_with(kNativePrefix)) {
    std::string_view const name = attribute.substr(kNativePrefix.size());
    return IsAttributeName(name) ? name : std::string_view();
  }
  for (auto const& [standard, name] : kStandardNames) {
    bool const is_this = attribute.starts_with(kStandardPrefix) &&
                         EqualIgnoringCase(attribute.substr(kStandardPrefix.size()), standard);
    if (is_this) return name;
  }
  return {};
}

std::string Condition(std::string_view name, std::string_view value) {
  std::string condition = "(";
  return condition.append(name).append("=").append(EscapedForFilter(value)).append(")");
}

// A computer is known by three names.
std::string ComputerCondition(std::string_view value) {
  std::string const account = std::string(value).append(value.ends_with('$') ? "" : "$");
  return "(|" + Condition(kName, account) + Condition("cn", value) +
         Condition("dNSHostName", value) + ")";
}

std::string ConditionFor(DirectoryQuery const& query, std::string_view name,
                         std::string const& value) {
  bool const is_computer = query.type == kComputerRecords;
  if (is_computer && name == kName) return ComputerCondition(value);
  if (!EqualIgnoringCase(name, "objectSid")) return Condition(name, value);
  return Condition(name, BinarySid(value).value_or(value));
}

std::vector<std::string> AttributesFor(DirectoryQuery const& query) {
  std::vector<std::string> names = {kName};
  for (std::string const& requested : query.requested) {
    if (requested == kAllAttributes || requested == kAllNativeAttributes) names.emplace_back("*");
    if (requested == kAllStandardAttributes) {
      for (auto const& [standard, name] : kStandardNames) names.emplace_back(name);
    }
    std::string_view const name = LdapName(requested);
    if (!name.empty() && !IsComputed(name)) names.emplace_back(name);
  }
  std::ranges::sort(names);
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

}  // namespace

std::string EscapedForFilter(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string escaped;
  for (char const character : bytes) {
    auto const byte = static_cast<unsigned char>(character);
    bool const is_plain =
        byte > ' ' && byte < 0x7F &&
        std::string_view("*()\\&|!<>=~/").find(character) == std::string_view::npos;
    if (is_plain) escaped += character;
    if (!is_plain) escaped += {'\\', kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return escaped;
}

std::optional<LdapSearch> SearchFor(DirectoryQuery const& query) {
  auto const kind = std::ranges::find(kKinds, std::string_view(query.type),
                                      [](auto const& entry) { return entry.first; });
  if (kind == std::end(kKinds)) return {};
  std::string_view const name = LdapName(query.attribute);
  if (!query.values.empty() && name.empty()) return {};
  std::string conditions;
  for (std::string const& value : query.values) {
    // A condition without value is no filter, and no record has such a value.
    if (!value.empty()) conditions += ConditionFor(query, name, value);
  }
  if (conditions.empty() && !query.values.empty()) return {};
  if (query.values.size() > 1) conditions = "(|" + conditions + ")";
  LdapSearch search;
  search.filter = "(&" + std::string(kind->second) + conditions + ")";
  search.attributes = AttributesFor(query);
  return search;
}

std::vector<std::string> ComputedAttributes(DirectoryQuery const& query) {
  std::vector<std::string> names;
  for (std::string const& requested : query.requested) {
    std::string_view const name = LdapName(requested);
    if (IsComputed(name)) names.emplace_back(name);
  }
  return names;
}

DirectoryRecord RecordOf(LdapEntry const& entry, std::string const& type, std::string const& node) {
  DirectoryRecord record = {type, entry.name, node, {}};
  record.Add(kRecordType, type);
  record.Add(kRecordNode, node);
  for (auto const& [name, values] : entry.attributes) {
    record.attributes.push_back({std::string(kNativePrefix) + name, values});
    for (auto const& [standard, ldap_name] : kStandardNames) {
      if (!EqualIgnoringCase(name, ldap_name)) continue;
      record.attributes.push_back({std::string(kStandardPrefix).append(standard), values});
    }
    if (EqualIgnoringCase(name, kName)) record.name = values.front();
  }
  return record;
}

}  // namespace machine::live
