// Records of a node, as many at a time as the buffer holds.
#include <DirectoryService/DirServices.h>
#include <DirectoryService/DirServicesConst.h>

#include <algorithm>
#include <optional>

#include "frameworks/DirectoryService/answer_buffer.h"
#include "frameworks/DirectoryService/data_lists.h"
#include "frameworks/DirectoryService/references.h"
#include "machine/machine.h"

using namespace directory_service;
using machine::DirectoryQuery;

namespace {

tDirStatus StatusOf(machine::Absence const& absence) {
  switch (absence.reason) {
    case machine::Outcome::kPermissionRefused:
      return eDSPermissionError;
    case machine::Outcome::kMalformed:
      return eDSBadPacket;
    case machine::Outcome::kTimedOut:
      return eDSReceiveFailed;
    default:
      return eDSServiceUnavailable;
  }
}

// The arguments that all searches share.
struct Search {
  tDirNodeReference node;
  tDataBufferPtr buffer;
  tDataListPtr types;
  tDataListPtr attributes;  // null: all
  bool has_values;
  UInt32* count;
  tContextData* context;
};

UInt32 NumberOf(tContextData context) {
  return static_cast<UInt32>(reinterpret_cast<std::uintptr_t>(context));
}

tContextData ContextOf(UInt32 number) {
  return reinterpret_cast<tContextData>(static_cast<std::uintptr_t>(number));
}

tDirStatus Check(Search const& search) {
  if (search.buffer == nullptr) return eDSNullDataBuff;
  if (search.types == nullptr) return eDSNullRecTypeList;
  if (search.types->fDataNodeCount == 0) return eDSEmptyRecordTypeList;
  if (search.count == nullptr) return eDSNullParameter;
  return eDSNoErr;
}

// `limit` is of all types together; 0: none.
tDirStatus Ask(std::vector<DirectoryQuery> const& queries, std::size_t limit,
               std::unique_ptr<machine::DirectoryRecords>& records) {
  for (DirectoryQuery query : queries) {
    query.limit = limit == 0 || records == nullptr ? limit : limit - records->size();
    auto found = machine::CurrentMachine().Directory().Find(query);
    if (!found) return StatusOf(found.absence());
    if (records == nullptr) {
      records = std::make_unique<machine::DirectoryRecords>(std::move(found).value());
    } else {
      for (machine::DirectoryRecord const& record : *found) records->Add(record);
    }
    if (limit != 0 && records->size() >= limit) break;
  }
  return eDSNoErr;
}

bool IsContinued(Search const& search) {
  return search.context != nullptr && *search.context != nullptr;
}

// `pattern` says which records, but for node, type and attributes.
Node::Kept QuestionOf(Search const& search, Node const& node, DirectoryQuery pattern) {
  pattern.node = node.node;
  pattern.requested = search.attributes == nullptr ? std::vector<std::string>{kDSAttributesAll}
                                                   : StringsOf(*search.attributes);
  pattern.limit = *search.count;
  Node::Kept question;
  question.machine = machine::CurrentMachineNumber();
  for (std::string& type : StringsOf(*search.types)) {
    question.queries.push_back(pattern);
    question.queries.back().type = std::move(type);
  }
  return question;
}

// The records to hand out next: those that were left, those kept for a larger buffer, or new ones.
tDirStatus TakeRecords(Search const& search, Node& node, DirectoryQuery pattern,
                       Node::Kept& taken) {
  if (IsContinued(search)) {
    tDirStatus status = eDSNoErr;
    auto const left = References::Shared().Find<OpenSearch>(NumberOf(*search.context), status);
    if (!left || left->node != search.node) return eDSInvalidContinueData;
    taken.records = left->records;
    return eDSNoErr;
  }
  Node::Kept question = QuestionOf(search, node, std::move(pattern));
  taken = std::exchange(node.kept, {});
  bool const is_same = taken.records != nullptr && taken.queries == question.queries &&
                       taken.machine == question.machine;
  if (is_same) return eDSNoErr;
  taken = std::move(question);
  taken.records = std::make_shared<Records>();
  return Ask(taken.queries, *search.count, taken.records->found);
}

// As many records as fit; 0 when that is none of those there are.
UInt32 Write(Search const& search, Records& records) {
  // Whoever asks again with a little more each time is not made to wait for attempts.
  bool const is_known_small = search.buffer->fBufferSize < records.needed_size &&
                              search.has_values == records.needed_for_values;
  if (is_known_small) return 0;
  AnswerWriter writer(*search.buffer, Content::kRecords);
  std::vector<std::string_view> values;
  while (!records.empty() &&
         writer.Append(records.found->ViewAt(records.next, values), search.has_values)) {
    ++records.next;
  }
  UInt32 const count = writer.Finish();
  records.needed_size = count == 0 ? writer.needed_size() : 0;
  records.needed_for_values = search.has_values;
  if (records.found != nullptr) records.found->Forget(records.next);
  return count;
}

// Continue data is good for one call.
tDirStatus Continue(Search const& search, std::shared_ptr<Records> records) {
  if (search.context == nullptr) return eDSNoErr;
  if (IsContinued(search)) References::Shared().Close<OpenSearch>(NumberOf(*search.context));
  *search.context = nullptr;
  if (records->empty()) return eDSNoErr;
  tDirStatus status = eDSNoErr;
  UInt32 const number =
      References::Shared().Add(OpenSearch{search.node, std::move(records)}, status);
  if (status == eDSNoErr) *search.context = ContextOf(number);
  return status;
}

tDirStatus Run(Search const& search, DirectoryQuery pattern) {
  tDirStatus status = Check(search);
  if (status != eDSNoErr) return status;
  auto const node = References::Shared().Find<OpenNode>(search.node, status);
  if (!node) return status;
  Node::Kept taken;
  status = TakeRecords(search, **node, std::move(pattern), taken);
  if (status != eDSNoErr) return status;
  UInt32 const count = Write(search, *taken.records);
  if (count == 0 && !taken.records->empty()) {
    if (!IsContinued(search)) (*node)->kept = std::move(taken);
    return eDSBufferTooSmall;
  }
  *search.count = count;
  return Continue(search, std::move(taken.records));
}

std::optional<machine::DirectoryMatch> MatchOf(tDirPatternMatch match) {
  if (match == eDSExact) return machine::DirectoryMatch::kExact;
  if (match == eDSiExact) return machine::DirectoryMatch::kIgnoringCase;
  return {};
}

}  // namespace

tDirStatus dsGetRecordList(tDirNodeReference node, tDataBufferPtr buffer, tDataListPtr names,
                           tDirPatternMatch match, tDataListPtr types, tDataListPtr attributes,
                           dsBool info_only, UInt32* count, tContextData* context) {
  if (names == nullptr) return eDSNullRecNameList;
  if (attributes == nullptr) return eDSNullAttributeTypeList;
  DirectoryQuery pattern;
  pattern.values = StringsOf(*names);
  if (pattern.values.empty()) return eDSEmptyRecordNameList;
  bool const wants_all =
      match == eDSAnyMatch || std::ranges::count(pattern.values, kDSRecordsAll) != 0;
  if (wants_all) pattern.values.clear();
  auto const known = MatchOf(match);
  if (!known && !wants_all) return eDSUnSupportedMatchType;
  pattern.match = known.value_or(machine::DirectoryMatch::kIgnoringCase);
  return Run({node, buffer, types, attributes, info_only == 0, count, context}, std::move(pattern));
}

tDirStatus dsDoAttributeValueSearchWithData(tDirNodeReference node, tDataBufferPtr buffer,
                                            tDataListPtr types, tDataNodePtr attribute,
                                            tDirPatternMatch match, tDataNodePtr value,
                                            tDataListPtr attributes, dsBool info_only,
                                            UInt32* count, tContextData* context) {
  if (attribute == nullptr) return eDSNullAttributeType;
  if (value == nullptr) return eDSNullPatternMatch;
  auto const known = MatchOf(match);
  if (!known) return eDSUnSupportedMatchType;
  DirectoryQuery pattern;
  pattern.attribute = TextOf(*attribute);
  pattern.values = {std::string(TextOf(*value))};
  pattern.match = *known;
  return Run({node, buffer, types, attributes, info_only == 0, count, context}, std::move(pattern));
}

tDirStatus dsDoAttributeValueSearch(tDirNodeReference node, tDataBufferPtr buffer,
                                    tDataListPtr types, tDataNodePtr attribute,
                                    tDirPatternMatch match, tDataNodePtr value, UInt32* count,
                                    tContextData* context) {
  return dsDoAttributeValueSearchWithData(node, buffer, types, attribute, match, value, nullptr, 0,
                                          count, context);
}

tDirStatus dsReleaseContinueData(tDirReference reference, tContextData context) {
  tDirStatus status = References::Shared().StatusOf<OpenService>(reference);
  if (status != eDSNoErr) return status;
  auto const search = References::Shared().Find<OpenSearch>(NumberOf(context), status);
  auto const node =
      search ? References::Shared().Find<OpenNode>(search->node, status) : std::nullopt;
  if (!node || (*node)->service != reference) return eDSInvalidContinueData;
  return References::Shared().Close<OpenSearch>(NumberOf(context));
}
