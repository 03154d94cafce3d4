// What the refreshes of the computer's record and of users' have in common: when one is due, and
// what becomes of the answers.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "inspectors/activedirectory/directory/account_operations.h"
#include "inspectors/activedirectory/directory/active_directory_account.h"
#include "inspectors/activedirectory/directory/active_directory_inspector_context.h"

// Whether the record is old enough; never when it is from the future. A record that has no name
// because readings failed is read again after ten minutes at the earliest, and from the sixth
// failure on after the interval, or an hour if that is shorter.
bool IsRefreshDue(ActiveDirectoryAccount const& record, std::uint32_t interval_seconds,
                  Instant now);

// Until all are there the record is left alone, so that a refresh can be given up.
struct AccountAnswers {
  bool are_groups_wanted = true;
  bool has_name = false;
  bool has_groups = false;
  std::string distinguished_name, name_error, groups_error;
  std::vector<ActiveDirectoryGroup> groups;

  bool are_good() const { return has_name && (has_groups || !are_groups_wanted); }
};

// Puts the answers, or why there are none, into the record.
void StoreAnswers(AccountAnswers answers, Instant now, ActiveDirectoryAccount& record);

// Asks for the name, then for the groups' SIDs, then for what groups they are. Nothing when the
// evaluation is to stop. The callables are those of `account_operations.h` for one account.
template <class GetName, class GetSids, class GetGroups>
std::optional<AccountAnswers> AskAboutAccount(ActiveDirectoryInspectorContext const& context,
                                              bool are_groups_wanted, GetName const& get_name,
                                              GetSids const& get_sids,
                                              GetGroups const& get_groups) {
  AccountAnswers answers;
  answers.are_groups_wanted = are_groups_wanted;
  answers.has_name = get_name(answers.distinguished_name, answers.name_error);
  if (context.ShouldStop()) return {};
  if (!are_groups_wanted) return answers;
  answers.has_groups = get_sids(answers.groups, answers.groups_error);
  if (context.ShouldStop()) return {};
  if (answers.has_groups) {
    answers.has_groups = get_groups(&context, answers.groups, answers.groups_error);
  }
  if (context.ShouldStop()) return {};
  return answers;
}
