#include "machine/live/directory_network.h"

#include <algorithm>

#include "machine/live/directory_entry.h"
#include "machine/live/directory_filter.h"
#include "machine/live/worker.h"

namespace machine::live {
namespace {

using Entries = Fact<std::vector<LdapEntry>>;

// One question as the thread that works on it has it: nothing here belongs to who asked.
class Question {
 public:
  Question(LdapEngine& engine, DirectoryQuery query, LdapSearch search,
           std::shared_ptr<DirectorySettings const> settings,
           std::unique_ptr<LdapConnection> connection)
      : engine_(engine),
        query_(std::move(query)),
        search_(std::move(search)),
        settings_(std::move(settings)),
        connection_(std::move(connection)) {}

  // A kept connection may have ended meanwhile; then a new one is tried.
  void Answer(Patience const& patience) {
    bool const was_kept = connection_ != nullptr;
    records = Find(patience);
    bool const has_ended = connection_ != nullptr && !connection_->is_usable();
    if (records || !was_kept || !has_ended || patience.is_over()) return;
    connection_.reset();
    records = Find(patience);
  }

  // Afterwards, where it is still good.
  std::unique_ptr<LdapConnection> TakeConnection() {
    if (connection_ != nullptr && !connection_->is_usable()) connection_.reset();
    return std::move(connection_);
  }

  Fact<DirectoryRecords> records = DirectoryRecords();
  std::string server;

 private:
  Fact<DirectoryRecords> Find(Patience const& patience) {
    if (connection_ == nullptr) {
      auto connected = engine_.Connect({settings_->uri, settings_->bind_name,
                                        settings_->bind_password, settings_->allows_clear_loopback},
                                       patience);
      if (!connected) return connected.absence();
      connection_ = std::move(connected).value();
    }
    server = connection_->uri();
    Fact<std::string> const base = Base(patience);
    if (!base) return base.absence();
    search_.base = *base;
    Entries entries = connection_->Search(search_, patience);
    if (!entries) return entries.absence();
    DirectoryRecords found;
    for (LdapEntry& entry : entries.value()) {
      auto const failure = CompleteEntry(*connection_, ComputedAttributes(query_), patience, entry);
      if (failure) return *failure;
      found.Add(RecordOf(entry, query_.type, NodeName()));
    }
    return found;
  }

  // The server's own where none is configured.
  Fact<std::string> Base(Patience const& patience) {
    if (!settings_->base.empty()) return settings_->base;
    if (!connection_->configured_base().empty()) return connection_->configured_base();
    if (!connection_->default_base.empty()) return connection_->default_base;
    constexpr char kBase[] = "defaultNamingContext";
    Entries const root = connection_->Search(SearchOfEntry({}, {kBase}), patience);
    if (!root) return root.absence();
    for (LdapEntry const& entry : *root) {
      for (auto const& [name, values] : entry.attributes) {
        if (EqualIgnoringCase(name, kBase)) return connection_->default_base = values.front();
      }
    }
    return Absence{Outcome::kAbsent, server, "no base is configured and the server tells none"};
  }

  // By the server's host, as the service names such nodes.
  std::string NodeName() const {
    std::string_view host = server;
    std::size_t const start = host.find("://");
    if (start != std::string_view::npos) host.remove_prefix(start + 3);
    return "/LDAPv3/" + std::string(host.substr(0, host.find_first_of(":/")));
  }

  LdapEngine& engine_;
  DirectoryQuery const query_;
  LdapSearch search_;
  std::shared_ptr<DirectorySettings const> const settings_;
  std::unique_ptr<LdapConnection> connection_;
};

std::string SourceName(std::string const& server, LdapSearch const& search) {
  return (server.empty() ? "LDAP" : server) + " " + search.filter;
}

}  // namespace

Fact<Done> NetworkDirectory::Offer(DirectoryQuery const& query, NumberedSettings const& settings,
                                   DirectoryAnswer& answer) const {
  auto search = SearchFor(query);
  if (!search) return Done{};
  // Else some of the first records may not count.
  bool const counts_every_record =
      answer.is_empty() && !RequestsNative(query) && query.match == DirectoryMatch::kIgnoringCase;
  if (counts_every_record) search->limit = query.limit;
  Records records = Ask(query, *search, settings);
  if (!records) return records.absence();
  std::vector<std::string_view> values;
  for (std::size_t i = 0; i < records->size(); ++i) {
    DirectoryRecordView const record = records->ViewAt(i, values);
    bool const has_name = query.match == DirectoryMatch::kIgnoringCase ||
                          query.attribute != kRecordName || query.type == kComputerRecords ||
                          Matches(record, query);
    if (has_name) answer.Offer(record);
  }
  return Done{};
}

NetworkDirectory::Records NetworkDirectory::Ask(DirectoryQuery const& query,
                                                LdapSearch const& search,
                                                NumberedSettings const& settings) const {
  if (IsSilent(settings)) {
    return AnnounceAbsence(Outcome::kTimedOut, SourceName({}, search), "silent a moment ago");
  }
  LdapEngine* const engine = LoadLdapEngine();
  if (engine == nullptr) {
    return AnnounceAbsence(Outcome::kNotSupported, "LDAP", "the library cannot be loaded");
  }
  auto const limit = settings.settings->time_limit;
  auto const question = std::make_shared<Question>(*engine, query, search, settings.settings,
                                                   TakeConnection(settings));
  Clock::time_point const start = Clock::now();
  auto const patience = std::make_shared<Patience>(limit);
  bool const is_done = RunWithin(
      limit, {}, [question, patience] { question->Answer(*patience); },
      settings.settings->should_stop);
  if (!is_done) patience->GiveUp();
  Clock::time_point const end = Clock::now();
  bool const has_answer = is_done && question->records;
  if (has_answer) SetSilentUntil({}, settings);
  if (!has_answer && end - start >= limit) SetSilentUntil(end + limit, settings);
  if (!is_done) {
    return AnnounceAbsence(Outcome::kTimedOut, SourceName({}, search), "no answer in time");
  }
  KeepConnection(question->TakeConnection(), settings);
  Announce(SourceName(question->server, search), question->records.outcome());
  return std::move(question->records);
}

bool NetworkDirectory::IsSilent(NumberedSettings const& settings) const {
  std::lock_guard lock(guard_);
  return Clock::now() < KnownWith(settings).silent_until;
}

void NetworkDirectory::SetSilentUntil(Clock::time_point time,
                                      NumberedSettings const& settings) const {
  std::lock_guard lock(guard_);
  KnownWith(settings).silent_until = time;
}

std::unique_ptr<LdapConnection> NetworkDirectory::TakeConnection(
    NumberedSettings const& settings) const {
  std::lock_guard lock(guard_);
  return std::move(KnownWith(settings).connection);
}

void NetworkDirectory::KeepConnection(std::unique_ptr<LdapConnection> connection,
                                      NumberedSettings const& settings) const {
  std::lock_guard lock(guard_);
  KnownWith(settings).connection = std::move(connection);
}

NetworkDirectory::Known& NetworkDirectory::KnownWith(NumberedSettings const& settings) const {
  if (known_.settings != settings.number) known_ = {settings.number, nullptr, {}};
  return known_;
}

}  // namespace machine::live
