#include "machine/capture/directory.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>

#include "machine/capture/directory_volume.h"
#include "machine/capture/values.h"
#include "machine/live/directory_accounts.h"

namespace machine::capture {
namespace {

void AppendEscaped(std::string& key, std::string_view text) {
  constexpr std::string_view kPlain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._:/$@";
  constexpr char kDigits[] = "0123456789ABCDEF";
  for (char const character : text) {
    auto const byte = static_cast<unsigned char>(character);
    if (kPlain.find(character) != std::string_view::npos) {
      key += character;
    } else {
      key += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
}

// One value or an array of them.
Fact<DirectoryAttribute> AttributeIn(std::string const& name, Field const& field) {
  DirectoryAttribute attribute = {name, {}};
  std::size_t const count = field.count();
  if (field.As<RecordArray>() == nullptr) {
    Fact<std::string> const value = field.Text();
    if (!value) return value.absence();
    attribute.values.push_back(*value);
  }
  for (std::size_t i = 0; i < count; ++i) {
    Fact<std::string> const value = field[i].Text();
    if (!value) return value.absence();
    attribute.values.push_back(*value);
  }
  return attribute;
}

// What does not say where it is from is local.
Fact<DirectoryRecord> RecordIn(std::string const& type, Field const& field) {
  auto const* entries = field.As<RecordDictionary>();
  if (entries == nullptr) return field.Malformed("not a dictionary");
  DirectoryRecord record = {type, {}, kLocalNode, {}};
  for (auto const& [name, value] : entries->entries()) {
    Fact<DirectoryAttribute> const attribute = AttributeIn(name, field[name]);
    if (!attribute) return attribute.absence();
    if (!attribute->values.empty()) record.attributes.push_back(*attribute);
  }
  DirectoryAttribute const* const name = record.Find(kRecordName);
  if (name == nullptr) return field.Malformed("no name");
  record.name = name->values.front();
  if (auto const* node = record.Find(kRecordNode)) {
    record.node = node->values.front();
  } else {
    record.Add(kRecordNode, record.node);
  }
  if (record.Find(kRecordType) == nullptr) record.Add(kRecordType, type);
  return record;
}

// By the numbers that the answers tell: one that is malformed has its number too.
using NumberedRecords = std::vector<Fact<DirectoryRecord>>;

}  // namespace

struct RecordsOfType {
  Fact<NumberedRecords> records;
  std::vector<Absence> left_out;
  std::unordered_map<std::string, std::vector<std::size_t>> numbers;  // by names in lower case
};

namespace {

// Those that the document has of a type; none is no failure, but nothing else than malformed ones.
RecordsOfType RecordsIn(std::string const& type, Field const& directory) {
  if (directory.exists() && directory.As<RecordDictionary>() == nullptr) {
    return {directory.Malformed("not a dictionary"), {}, {}};
  }
  Field const field = directory[type];
  if (field.exists() && field.As<RecordArray>() == nullptr) {
    return {field.Malformed("not an array"), {}, {}};
  }
  NumberedRecords records;
  RecordsOfType known = {NumberedRecords(), {}, {}};
  for (std::size_t i = 0; i < field.count(); ++i) {
    Fact<DirectoryRecord> const& record = records.emplace_back(RecordIn(type, field[i]));
    if (!record) {
      known.left_out.push_back(record.absence());
      continue;
    }
    for (std::string const& name : record->Find(kRecordName)->values) {
      known.numbers[LowerCase(name)].push_back(i);
    }
  }
  bool const is_lost = !records.empty() && known.left_out.size() == records.size();
  if (is_lost) return {known.left_out.front(), std::move(known.left_out), {}};
  known.records = std::move(records);
  return known;
}

// Of those that may match, in their order: a host asks for each of its users by name.
std::vector<std::size_t> Candidates(RecordsOfType const& known, DirectoryQuery const& query) {
  std::vector<std::size_t> numbers;
  bool const is_by_name =
      !query.values.empty() && query.attribute == kRecordName && query.type != kComputerRecords;
  if (!is_by_name) {
    numbers.resize(known.records->size());
    std::iota(numbers.begin(), numbers.end(), std::size_t{0});
    return numbers;
  }
  for (std::string const& name : query.values) {
    auto const found = known.numbers.find(LowerCase(name));
    if (found == known.numbers.end()) continue;
    numbers.insert(numbers.end(), found->second.begin(), found->second.end());
  }
  std::ranges::sort(numbers);
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  return numbers;
}

void Offer(RecordsOfType const& known, DirectoryQuery const& query, bool is_local,
           DirectoryAnswer& answer) {
  for (std::size_t const number : Candidates(known, query)) {
    Fact<DirectoryRecord> const& record = (*known.records)[number];
    bool const is_of_node = record && (record->node == kLocalNode) == is_local;
    if (is_of_node && Matches(*record, query)) answer.Offer(*record);
  }
}

}  // namespace

std::string KeyOfQuery(DirectoryQuery const& query) {
  std::string key = query.node == DirectoryNode::kLocal ? kLocalNode : kSearchNode;
  AppendEscaped(key.append(" "), query.type);
  if (!query.values.empty()) {
    AppendEscaped(key.append(" "), query.attribute);
    key += query.match == DirectoryMatch::kExact ? "==" : "=";
    for (std::string const& value : query.values) AppendEscaped(key, value), key += ",";
  }
  key += " ";
  for (std::string const& name : query.requested) AppendEscaped(key, name), key += ",";
  if (query.limit != 0) key += " " + std::to_string(query.limit);
  return key;
}

// Names are escaped, so that what stands between them is between them only.
std::string WithNamesChanged(std::string_view key,
                             std::function<std::string(std::string_view)> const& change) {
  std::string changed;
  while (!key.empty()) {
    std::size_t const end = std::min(key.find_first_of(" =,"), key.size());
    AppendEscaped(changed, change(BytesOfKey(key.substr(0, end))));
    changed += key.substr(end, 1);
    key.remove_prefix(std::min(end + 1, key.size()));
  }
  return changed;
}

// The document stays as it is, so that each type is read once. What was left out is said each time.
std::shared_ptr<RecordsOfType const> Directory::Known(std::string const& type) const {
  std::shared_ptr<RecordsOfType const> known;
  {
    std::lock_guard lock(guard_);
    std::shared_ptr<RecordsOfType const>& kept = known_[type];
    if (kept == nullptr) {
      kept = std::make_shared<RecordsOfType const>(RecordsIn(type, facts_[kDirectory]));
    }
    known = kept;
  }
  for (Absence const& absence : known->left_out) AnnounceLeftOut(absence);
  return known;
}

// By the numbers that the records have within their type.
Directory::Records Directory::Recorded(DirectoryQuery const& query, std::string const& key) const {
  auto const of_type = Known(query.type);
  auto const& known = of_type->records;
  if (!known) return known.absence();
  return facts_.Ask(kDirectoryAnswers, key, [&](Field const& field) -> Records {
    if (field.As<RecordArray>() == nullptr) return field.Malformed("not an array");
    DirectoryAnswer answer(query);
    for (std::size_t i = 0; i < field.count(); ++i) {
      Fact<std::uint64_t> const number = field[i].Unsigned(UINT32_MAX);
      if (!number) return number.absence();
      if (*number >= known->size()) return field[i].Malformed("no such record");
      Fact<DirectoryRecord> const& record = (*known)[*number];
      if (record) answer.Offer(*record);
    }
    return answer.Take();
  });
}

Fact<Done> Directory::OfferFiles(DirectoryQuery const& query, DirectoryAnswer& answer) const {
  Fact<Done> const volume = DirectoryVolume(files_, reader_).Offer(query, answer);
  if (volume) return volume;
  Fact<Done> const accounts = live::OfferAccountFiles(query, files_, answer);
  return accounts;
}

Fact<DirectoryRecords> Directory::Find(DirectoryQuery const& query) const {
  std::string const key = KeyOfQuery(query);
  if (facts_.Knows(kDirectoryAnswers, key)) return Recorded(query, key);
  bool const was_recorded = facts_.Knows(kDirectoryAnswers);
  Field const directory = facts_[kDirectory];
  auto const known = Known(query.type);
  if (directory.exists()) Announce(directory.path(), known->records.outcome());
  if (!known->records) return known->records.absence();
  DirectoryAnswer answer(query);
  Offer(*known, query, true, answer);
  Fact<Done> const files = was_recorded ? Fact<Done>(Done{}) : OfferFiles(query, answer);
  answer.EndNode();
  if (query.node == DirectoryNode::kSearch && !answer.is_complete()) {
    Offer(*known, query, false, answer);
  }
  bool const is_nothing = answer.is_empty() || query.values.empty();
  if (was_recorded && is_nothing) return facts_.Missing(std::string(kDirectoryAnswers) + "." + key);
  if (answer.is_empty() && !files && !directory.exists()) return facts_.Missing(kDirectory);
  return answer.Take();
}

}  // namespace machine::capture
