#include "machine/live/directory_entry.h"

#include <algorithm>
#include <iterator>

#include "machine/directory_records.h"

namespace machine::live {
namespace {

constexpr std::string_view kRange = ";range=";

std::optional<Absence> AddAttributes(LdapConnection& connection,
                                     std::vector<std::string> const& attributes,
                                     Patience const& patience, LdapEntry& entry) {
  auto more = connection.Search(SearchOfEntry(entry.name, attributes), patience);
  if (!more) return more.absence();
  for (LdapEntry& part : more.value()) {
    std::ranges::move(part.attributes, std::back_inserter(entry.attributes));
  }
  return {};
}

}  // namespace

LdapSearch SearchOfEntry(std::string const& name, std::vector<std::string> attributes) {
  return {name, true, "(objectClass=*)", std::move(attributes), 0};
}

// The last part is "member;range=3000-*".
std::optional<Absence> CompleteEntry(LdapConnection& connection,
                                     std::vector<std::string> const& attributes,
                                     Patience const& patience, LdapEntry& entry) {
  if (!attributes.empty()) {
    if (auto failure = AddAttributes(connection, attributes, patience, entry)) return failure;
  }
  for (auto& [name, values] : entry.attributes) {
    for (std::size_t at; (at = LowerCase(name).find(kRange)) != std::string::npos;) {
      bool const is_last = name.ends_with("-*");
      name.resize(at);
      if (is_last) break;
      std::string rest = name + std::string(kRange) + std::to_string(values.size()) + "-*";
      LdapEntry part = {entry.name, {}};
      auto failure = AddAttributes(connection, {std::move(rest)}, patience, part);
      if (failure) return failure;
      if (part.attributes.empty()) {
        return Absence{Outcome::kMalformed, connection.uri(), name + ": the values do not go on"};
      }
      name = std::move(part.attributes.front().first);
      std::ranges::move(part.attributes.front().second, std::back_inserter(values));
    }
  }
  return {};
}

}  // namespace machine::live
