#include "host/evidence_log.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace gatotu::host {
namespace {

// A scan of millions of files neither fills the memory nor a message.
constexpr std::size_t kMostKept = 1'000'000;
constexpr std::size_t kMostFailuresKept = 1000;
constexpr std::size_t kMostReasons = 10;

}  // namespace

EvidenceLog::EvidenceLog(Keep keep) : keep_(keep), before_(machine::SetSourceObserver(this)) {}

EvidenceLog::~EvidenceLog() { machine::SetSourceObserver(before_); }

std::vector<Consultation> EvidenceLog::Consultations() const {
  std::vector<Consultation> result;
  std::set<std::tuple<std::string_view, machine::Outcome, std::uint64_t>> seen;
  for (Consultation const& entry : log_) {
    if (seen.emplace(entry.source, entry.outcome, entry.bytes).second) result.push_back(entry);
  }
  return result;
}

std::vector<std::string> EvidenceLog::Reasons(std::size_t begin, std::size_t end) const {
  std::vector<std::string> reasons;
  for (std::size_t i = begin; i < std::min(end, log_.size()); ++i) {
    Consultation const& entry = log_[i];
    if (entry.outcome == machine::Outcome::kAnswered) continue;
    std::string reason = entry.source + ": " + std::string(machine::NameOf(entry.outcome));
    if (std::find(reasons.begin(), reasons.end(), reason) != reasons.end()) continue;
    if (reasons.size() == kMostReasons) {
      reasons.emplace_back("and more");
      break;
    }
    reasons.push_back(std::move(reason));
  }
  return reasons;
}

void EvidenceLog::Clear() { log_.clear(); }

std::shared_ptr<void const> EvidenceLog::Copy(std::size_t begin, std::size_t end) const {
  end = std::min(end, log_.size());
  begin = std::min(begin, end);
  return std::make_shared<std::vector<Consultation> const>(
      log_.begin() + static_cast<std::ptrdiff_t>(begin),
      log_.begin() + static_cast<std::ptrdiff_t>(end));
}

void EvidenceLog::Announce(void const* copy) {
  for (Consultation const& entry : *static_cast<std::vector<Consultation> const*>(copy)) {
    Consulted({entry.source, entry.outcome, entry.bytes});
  }
}

void EvidenceLog::Consulted(machine::Announcement const& announcement) {
  if (keep_ == Keep::kFailures && announcement.outcome == machine::Outcome::kAnswered) return;
  if (log_.size() >= (keep_ == Keep::kAll ? kMostKept : kMostFailuresKept)) return;
  log_.push_back({std::string(announcement.source), announcement.outcome, announcement.bytes});
}

}  // namespace gatotu::host
