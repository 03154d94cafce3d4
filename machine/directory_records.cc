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

bool HasValue(DirectoryRecord const& record, std::string_view attribute, std::string_view wanted,
              DirectoryMatch match) {
  DirectoryAttribute const* const found = record.Find(attribute);
  return found != nullptr && std::ranges::any_of(found->values, [&](std::string const& value) {
           return IsEqual(value, wanted, match);
         });
}

// Its account's name has a "$" at the end.
bool IsComputerNamed(DirectoryRecord const& record, std::string const& wanted,
                     DirectoryMatch match) {
  return HasValue(record, kRecordName, wanted + "$", match) ||
         HasValue(record, "dsAttrTypeNative:cn", wanted, match) ||
         HasValue(record, "dsAttrTypeNative:dNSHostName", wanted, match);
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

DirectoryAttribute const* DirectoryRecord::Find(std::string_view attribute) const {
  auto const found =
      std::ranges::find_if(attributes, [attribute](DirectoryAttribute const& candidate) {
        return EqualIgnoringCase(candidate.name, attribute);
      });
  return found == attributes.end() ? nullptr : &*found;
}

void DirectoryRecord::Add(std::string_view attribute, std::string value) {
  auto* const known = const_cast<DirectoryAttribute*>(Find(attribute));
  if (known != nullptr) return known->values.push_back(std::move(value));
  attributes.push_back({std::string(attribute), {}});
  attributes.back().values.push_back(std::move(value));
}

void DirectoryAnswer::Offer(DirectoryRecord record) {
  if (is_full() || IsOfEarlierNode(record.name)) return;
  std::erase_if(record.attributes, [this](DirectoryAttribute const& attribute) {
    return !IsRequested(query_, attribute.name);
  });
  bool const has_native = std::ranges::any_of(
      record.attributes,
      [](DirectoryAttribute const& attribute) { return IsNative(attribute.name); });
  if (RequestsNative(query_) && !has_native) return;
  records_.push_back(std::move(record));
}

void DirectoryAnswer::EndNode() { count_of_earlier_nodes_ = records_.size(); }

bool DirectoryAnswer::IsOfEarlierNode(std::string_view name) const {
  for (; named_count_ < count_of_earlier_nodes_; ++named_count_) {
    names_of_earlier_nodes_.insert(LowerCase(records_[named_count_].name));
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
