#include "inspectors/activedirectory/directory/account_refresh.h"

#include <algorithm>

#include "inspectors/activedirectory/directory/active_directory_local_computer.h"
#include "inspectors/activedirectory/directory/active_directory_local_user.h"
#include "portable/clock.h"

namespace {

constexpr std::uint64_t kSecond = 1'000'000;
constexpr std::uint64_t kTenMinutes = 600 * kSecond;
constexpr std::uint64_t kHour = 3600 * kSecond;
constexpr std::uint32_t kFailuresBeforeLongWait = 6;

// Unsigned, since the two may lie further apart than a signed number tells.
bool HasPassed(std::uint64_t microseconds, Instant since, Instant now) {
  return since.microseconds <= now.microseconds &&
         static_cast<std::uint64_t>(now.microseconds) -
                 static_cast<std::uint64_t>(since.microseconds) >=
             microseconds;
}

}  // namespace

bool IsRefreshDue(ActiveDirectoryAccount const& record, std::uint32_t interval_seconds,
                  Instant now) {
  std::uint64_t wait = interval_seconds * kSecond;
  bool const is_failing = record.GetDistinguishedName().empty() && record.GetErrorCount() != 0;
  if (is_failing) {
    bool const waits_long = record.GetErrorCount() >= kFailuresBeforeLongWait;
    wait = waits_long ? std::max(std::min(wait, kHour), kTenMinutes) : kTenMinutes;
  }
  return HasPassed(wait, record.GetLastSampleTime(), now);
}

void StoreAnswers(AccountAnswers answers, Instant now, ActiveDirectoryAccount& record) {
  bool const are_good = answers.are_good();
  record.SetErrorCount(are_good ? 0 : record.GetErrorCount() + 1);
  // Both are empty when all is good.
  record.SetErrorMessage(std::move(answers.name_error));
  record.SetGroupsErrorMessage(answers.are_groups_wanted ? std::move(answers.groups_error)
                                                         : "Disabled");
  if (are_good) {
    record.SetDistinguishedName(std::move(answers.distinguished_name));
    record.SetGroups(std::move(answers.groups));
  }
  record.SetCacheState(kFilledFromDirectory);
  record.SetLastSampleTime(now);
}

void ActiveDirectoryLocalComputer::Refresh(ActiveDirectoryInspectorContext const* context) {
  if (context == nullptr || GetCacheState() == kNeverFilled) return;
  Instant const now = CurrentInstant();
  if (!IsRefreshDue(*this, context->ComputerRefreshInterval(), now)) return;
  auto const get_name = [context](std::string& name, std::string& error) {
    return MacintoshPlatform::GetLocalComputerDistinguishedName(context, name, error);
  };
  auto const get_sids = [context](std::vector<ActiveDirectoryGroup>& groups, std::string& error) {
    return MacintoshPlatform::GetLocalComputerGroupSids(context, groups, error);
  };
  auto answers = AskAboutAccount(*context, context->AreLookupsEnabled(), get_name, get_sids,
                                 MacintoshPlatform::GetLocalComputerGroups);
  if (!answers) return;
  StoreAnswers(std::move(*answers), now, *this);
  SaveToCache(context);
}

void ActiveDirectoryLocalUser::Refresh(ActiveDirectoryInspectorContext const* context) {
  if (context == nullptr) return;
  Instant const now = CurrentInstant();
  if (GetStatus() != Status::kNeverRefreshed) {
    std::uint32_t const interval = context->UserRefreshInterval();
    if (interval == ActiveDirectoryInspectorContext::kNeverRefresh) return;
    if (!IsRefreshDue(*this, interval, now)) return;
  }
  auto const get_name = [&](std::string& name, std::string& error) {
    return MacintoshPlatform::GetLocalUserDistinguishedName(context, GetName(), GetDomain(), name,
                                                            error);
  };
  auto const get_sids = [&](std::vector<ActiveDirectoryGroup>& groups, std::string& error) {
    return MacintoshPlatform::GetLocalUserGroupSids(context, GetName(), GetDomain(), groups, error);
  };
  auto answers =
      AskAboutAccount(*context, true, get_name, get_sids, MacintoshPlatform::GetLocalUserGroups);
  if (!answers) return;
  SetStatus(answers->are_good() ? Status::kSucceeded : Status::kFailed);
  StoreAnswers(std::move(*answers), now, *this);
  SaveToCache(context);
}
