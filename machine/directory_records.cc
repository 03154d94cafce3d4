#include "machine/directory_records.h"

#include <algorithm>

namespace machine {
namespace {

bool IsNative(std::string_view attribute) { return attribute.starts_with(kNativePrefix); }

bool Covers(std::string_view requested, std::string_view attribute) {
  if (requested == kAllAttributes) return true;
  if (requested == kAllStandardAttributes) return attribute.starts_with(kStandardPrefix);
  if (requested == kAllNativeAttributes) return IsNative(attribute);
  return EqualIgnoringCase(requested, attribute);
}

}  // namespace

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& character : lower) {
    if (character >= 'A' && character <= 'Z') character += 'a' - 'A';
  }
  return lower;
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
  return left.size() == right.size() && LowerCase(left) == LowerCase(right);
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
  DirectoryAttribute const* const attribute = record.Find(query.attribute);
  if (attribute == nullptr) return false;
  return std::ranges::any_of(attribute->values, [&query](std::string const& value) {
    return std::ranges::any_of(query.values, [&](std::string const& wanted) {
      return IsEqual(value, wanted, query.match);
    });
  });
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
  attributes.push_back({std::string(attribute), {std::move(value)}});
}

void DirectoryAnswer::Offer(DirectoryRecord record) {
  std::string name = LowerCase(record.name);
  if (is_full() || names_of_earlier_nodes_.contains(name)) return;
  std::erase_if(record.attributes, [this](DirectoryAttribute const& attribute) {
    return !IsRequested(query_, attribute.name);
  });
  bool const has_native = std::ranges::any_of(
      record.attributes,
      [](DirectoryAttribute const& attribute) { return IsNative(attribute.name); });
  if (RequestsNative(query_) && !has_native) return;
  names_of_this_node_.insert(std::move(name));
  records_.push_back(std::move(record));
}

void DirectoryAnswer::EndNode() { names_of_earlier_nodes_.merge(names_of_this_node_); }

// Names that were asked for are taken for unique, other values are not.
bool DirectoryAnswer::is_complete() const {
  if (is_full()) return true;
  if (query_.values.empty() || query_.attribute != kRecordName) return false;
  return std::ranges::all_of(query_.values, [this](std::string const& value) {
    return names_of_earlier_nodes_.contains(LowerCase(value));
  });
}

}  // namespace machine
