#include "machine/live/directory_accounts.h"

#include <grp.h>
#include <pwd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <memory>
#include <mutex>

#include "machine/live/name_service.h"
#include "machine/never_destroyed.h"
#include "machine/system_files.h"

namespace machine::live {
namespace {

// In the order of a record's values. The last ones may be missing.
constexpr DirectoryAttributeView kUserAttributes[] = {{kRecordName, 1},
                                                      {kRecordType, 1},
                                                      {kRecordNode, 1},
                                                      {"dsAttrTypeStandard:UniqueID", 1},
                                                      {"dsAttrTypeStandard:PrimaryGroupID", 1},
                                                      {"dsAttrTypeStandard:NFSHomeDirectory", 1},
                                                      {"dsAttrTypeStandard:RealName", 1},
                                                      {"dsAttrTypeStandard:UserShell", 1}};
constexpr std::size_t kFirstOptional = 5;
constexpr DirectoryRecordForm kUserForm = {kUserRecords, kLocalNode, kUserAttributes};

// A record's texts where the answer finds them; taken for one record after another.
class LocalRecord {
 public:
  // The texts are looked at as long as the view is.
  DirectoryRecordView Of(passwd const& user);
  DirectoryRecordView Of(group const& group);

 private:
  // Room for a number's digits.
  using Digits = std::array<char, 16>;
  static std::string_view Write(std::uint32_t number, Digits& digits) {
    return {digits.begin(), std::to_chars(digits.begin(), digits.end(), number).ptr};
  }

  Digits number_, group_number_;
  std::array<std::string_view, std::size(kUserAttributes)> user_values_;
  DirectoryRecordParts parts_;
};

std::string_view TextOf(char const* text) { return text == nullptr ? std::string_view() : text; }

// The comment's first part is the name, then come rooms and telephones.
DirectoryRecordView LocalRecord::Of(passwd const& user) {
  std::string_view const name = user.pw_name, comment = TextOf(user.pw_gecos);
  user_values_ = {name,
                  kUserForm.type,
                  kUserForm.node,
                  Write(user.pw_uid, number_),
                  Write(user.pw_gid, group_number_),
                  TextOf(user.pw_dir),
                  comment.substr(0, comment.find(',')),
                  TextOf(user.pw_shell)};
  auto const is_missing = [](std::string_view value) { return value.empty(); };
  if (std::none_of(user_values_.begin() + kFirstOptional, user_values_.end(), is_missing)) {
    return {kUserForm.type, name, kUserForm.node, kUserAttributes, user_values_, &kUserForm};
  }
  parts_.Clear();
  for (std::size_t i = 0; i < user_values_.size(); ++i) {
    if (i >= kFirstOptional && is_missing(user_values_[i])) continue;
    parts_.Add(kUserAttributes[i].name, user_values_[i]);
  }
  return {kUserForm.type, name, kUserForm.node, parts_.attributes, parts_.values};
}

DirectoryRecordView LocalRecord::Of(group const& group) {
  std::string_view const name = group.gr_name, node = kLocalNode;
  parts_.Clear();
  parts_.Add(kRecordName, name);
  parts_.Add(kRecordType, kGroupRecords);
  parts_.Add(kRecordNode, node);
  parts_.Add("dsAttrTypeStandard:PrimaryGroupID", Write(group.gr_gid, group_number_));
  std::vector<std::string_view> members;
  for (char* const* member = group.gr_mem; *member != nullptr; ++member) {
    if (**member != '\0') members.emplace_back(*member);
  }
  if (!members.empty()) parts_.Add("dsAttrTypeStandard:GroupMembership", members);
  return {kGroupRecords, name, node, parts_.attributes, parts_.values};
}

// The calls of the name service for one kind of record.
template <typename Record>
struct Calls;

template <>
struct Calls<passwd> {
  static constexpr char* passwd::*kName = &passwd::pw_name;
  static constexpr char kNamed[] = "getpwnam", kNext[] = "getpwent";
  static constexpr char const* kPath = kUserListPath;
  static constexpr auto Named = ::getpwnam_r;
  static constexpr auto Start = ::setpwent;
  static constexpr auto Next = ::getpwent_r;
  static constexpr auto End = ::endpwent;
  static constexpr auto NextInFile = ::fgetpwent_r;
};

template <>
struct Calls<group> {
  static constexpr char* group::*kName = &group::gr_name;
  static constexpr char kNamed[] = "getgrnam", kNext[] = "getgrent";
  static constexpr char const* kPath = kGroupListPath;
  static constexpr auto Named = ::getgrnam_r;
  static constexpr auto Start = ::setgrent;
  static constexpr auto Next = ::getgrent_r;
  static constexpr auto End = ::endgrent;
  static constexpr auto NextInFile = ::fgetgrent_r;
};

// Offers what matches of all that `next` gives. `ENOENT` is the end of the list.
template <typename Record, typename Next>
Fact<Done> OfferEach(char const* source, DirectoryQuery const& query, DirectoryAnswer& answer,
                     std::function<bool()> const& should_stop, Next&& next) {
  std::uint64_t count = 0;
  LocalRecord local;
  std::vector<char> buffer;
  auto const offer = [&](Record const& entry) {
    // Names of "+" and the like stand for lists kept elsewhere.
    bool const is_name =
        entry.*Calls<Record>::kName != nullptr &&
        std::string_view("+-").find((entry.*Calls<Record>::kName)[0]) == std::string_view::npos;
    ++count;
    if (!is_name) return;
    DirectoryRecordView const record = local.Of(entry);
    if (Matches(record, query)) answer.Offer(record);
  };
  int error = 0;
  while (error == 0 && !answer.is_full()) {
    constexpr std::uint64_t kBetweenStops = 64;
    bool const is_time = should_stop && count % kBetweenStops == 0;
    if (is_time && should_stop()) return AnnounceAbsence(Outcome::kTimedOut, source, "given up");
    error = TakeFromNameService<Record>(buffer, offer, next);
  }
  if (error != 0 && error != ENOENT) return AnnounceError(error, source);
  Announce(source, Outcome::kAnswered);
  return Done{};
}

// The list has one position in a process.
template <typename Record>
Fact<Done> OfferAll(DirectoryQuery const& query, std::function<bool()> const& should_stop,
                    DirectoryAnswer& answer) {
  static NeverDestroyed<std::mutex> guard;
  std::lock_guard lock(*guard);
  Calls<Record>::Start();
  auto const next = [](Record& record, std::vector<char>& buffer, Record*& found) {
    return Calls<Record>::Next(&record, buffer.data(), buffer.size(), &found);
  };
  Fact<Done> done = OfferEach<Record>(Calls<Record>::kNext, query, answer, should_stop, next);
  Calls<Record>::End();
  return done;
}

// The numbers with which a name service says that it does not know a name.
bool IsUnknown(int error) {
  return error == ENOENT || error == ESRCH || error == EBADF || error == EPERM;
}

// Some services have records that they do not list, and a list may be long: a name as it is asked
// comes first, and the list only where letter case may differ.
template <typename Record>
Fact<Done> OfferNamed(DirectoryQuery const& query, std::function<bool()> const& should_stop,
                      DirectoryAnswer& answer) {
  DirectoryQuery rest = query;
  rest.values.clear();
  for (std::string const& name : query.values) {
    if (name.find('\0') != std::string::npos) continue;
    auto const ask = [&name](Record& record, std::vector<char>& buffer, Record*& found) {
      return Calls<Record>::Named(name.c_str(), &record, buffer.data(), buffer.size(), &found);
    };
    int const error = TakeFromNameService<Record>(
        [&answer](Record const& found) { answer.Offer(LocalRecord().Of(found)); }, ask);
    if (error != 0 && !IsUnknown(error)) return AnnounceError(error, Calls<Record>::kNamed);
    Announce(Calls<Record>::kNamed, error == 0 ? Outcome::kAnswered : Outcome::kAbsent);
    if (error != 0) rest.values.push_back(name);
  }
  if (rest.values.empty() || query.match == DirectoryMatch::kExact) return Done{};
  return OfferAll<Record>(rest, should_stop, answer);
}

template <typename Record>
Fact<Done> OfferRecords(DirectoryQuery const& query, std::function<bool()> const& should_stop,
                        DirectoryAnswer& answer) {
  bool const is_named = !query.values.empty() && query.attribute == kRecordName;
  return is_named ? OfferNamed<Record>(query, should_stop, answer)
                  : OfferAll<Record>(query, should_stop, answer);
}

template <typename Record>
Fact<Done> OfferFile(DirectoryQuery const& query, FileSource const& files,
                     DirectoryAnswer& answer) {
  char const* const path = Calls<Record>::kPath;
  Fact<std::string> text = files.ReadFile(path, kLargestSystemFile);
  if (!text) return text.absence();
  if (text->empty()) return Done{};
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> const stream(
      ::fmemopen(text.value().data(), text->size(), "r"), &std::fclose);
  if (stream == nullptr) return AnnounceError(errno, path);
  auto const next = [&stream](Record& record, std::vector<char>& buffer, Record*& found) {
    return Calls<Record>::NextInFile(stream.get(), &record, buffer.data(), buffer.size(), &found);
  };
  return OfferEach<Record>(path, query, answer, {}, next);
}

}  // namespace

// None has native attributes, so a query that wants some need not be asked.
Fact<Done> OfferNameService(DirectoryQuery const& query, std::function<bool()> const& should_stop,
                            DirectoryAnswer& answer) {
  if (RequestsNative(query)) return Done{};
  if (query.type == kUserRecords) return OfferRecords<passwd>(query, should_stop, answer);
  if (query.type == kGroupRecords) return OfferRecords<group>(query, should_stop, answer);
  return Done{};
}

Fact<Done> OfferAccountFiles(DirectoryQuery const& query, FileSource const& files,
                             DirectoryAnswer& answer) {
  if (RequestsNative(query)) return Done{};
  if (query.type == kUserRecords) return OfferFile<passwd>(query, files, answer);
  if (query.type == kGroupRecords) return OfferFile<group>(query, files, answer);
  return Done{};
}

}  // namespace machine::live
