#include "machine/directory_records.h"

#include <algorithm>

#include "machine/live/text.h"

namespace machine {
namespace {

char Lower(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 'a' - 'A')
                                              : character;
}

bool IsNative(std::string_view attribute) { return attribute.starts_with(kNativePrefix); }

bool Covers(std::string_view requested, std::string_view attribute) {
  if (requested == kAllAttributes) return true;
  if (requested == kAllStandardAttributes) return attribute.starts_with(kStandardPrefix);
  if (requested == kAllNativeAttributes) return IsNative(attribute);
  return EqualIgnoringCase(requested, attribute);
}

std::span<std::string const> ValuesOf(DirectoryRecord const& record, std::string_view attribute) {
  DirectoryAttribute const* const found = record.Find(attribute);
  return found == nullptr ? std::span<std::string const>() : found->values;
}

std::span<std::string_view const> ValuesOf(DirectoryRecordView const& record,
                                           std::string_view attribute) {
  std::size_t start = 0;
  for (auto const& [name, count] : record.attributes) {
    if (EqualIgnoringCase(name, attribute)) return record.values.subspan(start, count);
    start += count;
  }
  return {};
}

template <typename Record>
bool HasValue(Record const& record, std::string_view attribute, std::string_view wanted,
              DirectoryMatch match) {
  return std::ranges::any_of(ValuesOf(record, attribute),
                             [&](std::string_view value) { return IsEqual(value, wanted, match); });
}

// Its account's name has a "$" at the end.
template <typename Record>
bool IsComputerNamed(Record const& record, std::string const& wanted, DirectoryMatch match) {
  return HasValue(record, kRecordName, wanted + "$", match) ||
         HasValue(record, "dsAttrTypeNative:cn", wanted, match) ||
         HasValue(record, "dsAttrTypeNative:dNSHostName", wanted, match);
}

template <typename Record>
bool IsWanted(Record const& record, DirectoryQuery const& query) {
  if (record.type != query.type) return false;
  if (query.values.empty()) return true;
  bool const is_computer_name = query.type == kComputerRecords && query.attribute == kRecordName;
  return std::ranges::any_of(query.values, [&](std::string const& wanted) {
    if (HasValue(record, query.attribute, wanted, query.match)) return true;
    if (is_computer_name) return IsComputerNamed(record, wanted, query.match);
    if (!EqualIgnoringCase(query.attribute, kSecurityIdentifier)) return false;
    auto const sid = BinarySid(wanted);
    return sid && HasValue(record, kSecurityIdentifier, *sid, DirectoryMatch::kExact);
  });
}

}  // namespace

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), Lower);
  return lower;
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
  return std::ranges::equal(left, right, {}, Lower, Lower);
}

bool IsEqual(std::string_view left, std::string_view right, DirectoryMatch match) {
  return match == DirectoryMatch::kExact ? left == right : EqualIgnoringCase(left, right);
}

bool IsRequested(DirectoryQuery const& query, std::string_view attribute) {
  return std::ranges::any_of(query.requested, [attribute](std::string const& requested) {
    return Covers(requested, attribute);
  });
}

bool RequestsNative(DirectoryQuery const& query) {
  return std::ranges::any_of(query.requested, [](std::string const& requested) {
    return IsNative(requested) || requested == kAllNativeAttributes;
  });
}

bool Matches(DirectoryRecord const& record, DirectoryQuery const& query) {
  return IsWanted(record, query);
}
bool Matches(DirectoryRecordView const& record, DirectoryQuery const& query) {
  return IsWanted(record, query);
}

std::optional<std::string> BinarySid(std::string_view text) {
  constexpr std::size_t kMostParts = 15;
  if (!text.starts_with("S-")) return {};
  std::vector<std::uint64_t> numbers;
  for (text.remove_prefix(1); !text.empty();) {
    text.remove_prefix(1);
    std::string_view const piece = text.substr(0, text.find('-'));
    auto const number = live::ParseNumber<std::uint64_t>(piece);
    if (!number) return {};
    numbers.push_back(*number);
    text.remove_prefix(piece.size());
  }
  if (numbers.size() < 2 || numbers.size() > kMostParts + 2 || numbers[0] > 0xFF) return {};
  if (numbers[1] > 0xFFFF'FFFF'FFFF) return {};
  std::string sid = {static_cast<char>(numbers[0]), static_cast<char>(numbers.size() - 2)};
  for (int shift = 40; shift >= 0; shift -= 8) sid += static_cast<char>(numbers[1] >> shift);
  for (std::size_t i = 2; i < numbers.size(); ++i) {
    if (numbers[i] > UINT32_MAX) return {};
    for (int shift = 0; shift < 32; shift += 8) sid += static_cast<char>(numbers[i] >> shift);
  }
  return sid;
}

DirectoryAnswer::DirectoryAnswer(DirectoryQuery const& query)
    : query_(query),
      requests_all_(std::ranges::count(query.requested, kAllAttributes) != 0),
      requests_native_(RequestsNative(query)) {}

void DirectoryAnswer::Offer(DirectoryRecord const& record) {
  DirectoryRecordParts parts;
  if (!is_full()) Offer(ViewOf(record, parts));
}

void DirectoryAnswer::Offer(DirectoryRecordView record) {
  if (is_full() || IsOfEarlierNode(record.name)) return;
  if (!requests_all_) record = RequestedOf(record);
  bool const has_native = !requests_native_ || std::ranges::any_of(record.attributes, IsNative,
                                                                   &DirectoryAttributeView::name);
  if (has_native) records_.Add(record);
}

DirectoryRecordView DirectoryAnswer::RequestedOf(DirectoryRecordView const& record) {
  requested_.Clear();
  std::size_t start = 0;
  for (auto const& [name, count] : record.attributes) {
    if (IsRequested(query_, name)) requested_.Add(name, record.values.subspan(start, count));
    start += count;
  }
  return {record.type, record.name, record.node, requested_.attributes, requested_.values};
}

void DirectoryAnswer::EndNode() { count_of_earlier_nodes_ = records_.size(); }

bool DirectoryAnswer::IsOfEarlierNode(std::string_view name) const {
  for (; named_count_ < count_of_earlier_nodes_; ++named_count_) {
    names_of_earlier_nodes_.insert(LowerCase(records_.NameAt(named_count_)));
  }
  return !names_of_earlier_nodes_.empty() && names_of_earlier_nodes_.contains(LowerCase(name));
}

// Names that were asked for are taken for unique, other values are not.
bool DirectoryAnswer::is_complete() const {
  if (is_full()) return true;
  if (query_.values.empty() || query_.attribute != kRecordName) return false;
  return std::ranges::all_of(query_.values,
                             [this](std::string const& value) { return IsOfEarlierNode(value); });
}

}  // namespace machine
