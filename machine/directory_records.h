// Choosing among the records of a directory's nodes, whatever they come from.
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "machine/directory.h"

namespace machine {

// ASCII letters only.
std::string LowerCase(std::string_view text);
bool EqualIgnoringCase(std::string_view left, std::string_view right);

// Whether a query wants an attribute of this name.
bool IsRequested(DirectoryQuery const& query, std::string_view attribute);
// Whether the query names native attributes, one or all.
bool RequestsNative(DirectoryQuery const& query);

// Whether the record is of the type and has the value. Computers have two names more, and a
// security identifier may be asked for by its text.
bool Matches(DirectoryRecord const& record, DirectoryQuery const& query);
bool Matches(DirectoryRecordView const& record, DirectoryQuery const& query);
bool IsEqual(std::string_view left, std::string_view right, DirectoryMatch match);

inline constexpr std::string_view kSecurityIdentifier = "dsAttrTypeNative:objectSid";
// "S-1-5-21-1-2-3-512" in the binary form; nothing for any other text.
std::optional<std::string> BinarySid(std::string_view text);

// Collects the answer to one query, node by node.
class DirectoryAnswer {
 public:
  explicit DirectoryAnswer(DirectoryQuery const& query);

  // Takes what was requested of a record that matches, where its node answers for it. Records of a
  // node may have equal names.
  void Offer(DirectoryRecord const& record);
  void Offer(DirectoryRecordView record);
  void EndNode();
  // So that no further node need be asked.
  bool is_complete() const;

  DirectoryRecords Take() { return std::move(records_); }
  bool is_empty() const { return records_.empty(); }
  bool is_full() const { return query_.limit != 0 && records_.size() >= query_.limit; }

 private:
  bool IsOfEarlierNode(std::string_view name) const;
  DirectoryRecordView RequestedOf(DirectoryRecordView const& record);

  DirectoryQuery const& query_;
  bool const requests_all_, requests_native_;
  DirectoryRecords records_;
  DirectoryRecordParts requested_;  // of the record that is offered
  std::size_t count_of_earlier_nodes_ = 0;
  // In lower case, of as many of the first records. Collected when a later node is asked, which
  // most lists never need.
  mutable std::size_t named_count_ = 0;
  mutable std::set<std::string> names_of_earlier_nodes_;
};

}  // namespace machine
