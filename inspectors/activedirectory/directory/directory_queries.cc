#include "inspectors/activedirectory/directory/directory_queries.h"

#include "inspectors/activedirectory/directory/directory_search.h"
#include "inspectors/activedirectory/directory/sid.h"
#include "portable/clock.h"

namespace MacintoshPlatform {
namespace {

constexpr char kDistinguishedName[] = "dsAttrTypeNative:distinguishedName";
constexpr char kTokenGroups[] = "dsAttrTypeNative:tokenGroups";
constexpr char kObjectSid[] = "dsAttrTypeNative:objectSid";

// Leaves the name alone where there is no "=" with a "," behind it.
void SetNameFrom(std::string const& distinguished_name, ActiveDirectoryGroup& group) {
  std::size_t const start = distinguished_name.find('=');
  if (start == std::string::npos) return;
  std::size_t const end = distinguished_name.find(',', start);
  if (end == std::string::npos) return;
  group.SetName(distinguished_name.substr(start + 1, end - start - 1));
}

void AppendGroup(ConstData sid, std::vector<ActiveDirectoryGroup>& groups) {
  std::string text = XQConvertSidToStringSid(sid);
  if (text.empty()) return;
  groups.emplace_back().SetSid(std::move(text));
}

}  // namespace

std::string GetDNInternal(ADAttributeArgs const& args) {
  DirectorySearch search(ODGetSearchDirNode);
  RecordLists const lists = search.ListsForName(args.name, args.type, kDistinguishedName);
  if (search.ListRecords(lists, 1) != eDSNoErr) throw MacintoshPlatform::DSGetRecordListFailed();
  AnsweredRecords const answer = search.TakeAnswer();
  return answer.count() == 0 ? std::string() : answer.FirstValue();
}

std::vector<ActiveDirectoryGroup> GetSIDsInternal(ADAttributeArgs const& args) {
  DirectorySearch search(ODGetSearchDirNode);
  RecordLists const lists = search.ListsForName(args.name, args.type, kTokenGroups);
  if (search.ListRecordsInGrowingBuffer(lists, 0) != eDSNoErr) {
    throw MacintoshPlatform::DSGetRecordListFailed();
  }
  AnsweredRecords const answer = search.TakeAnswer();
  std::vector<ActiveDirectoryGroup> groups;
  for (UInt32 record = 1; record <= answer.count(); ++record) {
    answer.ForEachAttribute(record, [&](AutoODAttrEntryAttrValueList const& attribute) {
      answer.ForEachValue(attribute, [&groups](ConstData sid) { AppendGroup(sid, groups); });
    });
  }
  return groups;
}

ActiveDirectoryGroup GetGroupInternal(ADAttributeArgs const& args) {
  DirectorySearch search(ODGetSearchDirNode);
  if (search.FindByValue(args.name, kObjectSid, args.type, kDistinguishedName) != eDSNoErr) {
    throw MacintoshPlatform::DSGetRecordListFailed();
  }
  Instant const now = CurrentInstant();
  ActiveDirectoryGroup group;
  AnsweredRecords const answer = search.TakeAnswer();
  if (answer.count() == 0) return group;
  // Of several values the last one counts.
  auto const take = [&group, now](ConstData value) {
    group.SetDistinguishedName(MakeString(value));
    SetNameFrom(group.GetDistinguishedName(), group);
    group.SetLastSampleTime(now);
  };
  answer.ForEachAttribute(1, [&](AutoODAttrEntryAttrValueList const& attribute) {
    answer.ForEachValue(attribute, take);
  });
  return group;
}

std::string DirectoryErrorText() {
  try {
    throw;
  } catch (MacintoshPlatform::DSGetRecordListFailed const&) {
    return "dsGetRecordList() failed";
  } catch (ODGetAttributeEntryFailed const&) {
    return "dsGetAttributeEntry() failed";
  } catch (ODGetDirNodeInfoFailed const&) {
    return "dsGetDirNodeInfo() failed";
  } catch (ODGetAttrValueFailed const&) {
    return "dsGetAttributeValue() failed";
  } catch (ODGetAttributeValueDataFailed const&) {
    return "attr value was NULL";
  } catch (ODDataBufferAllocFailed const&) {
    return "dsDataBufferAllocate() failed";
  } catch (ODGetDirNodeNameFailed const&) {
    return "dsGetDirNodeName() failed";
  } catch (ODBuildListFromPathFailed const&) {
    return "dsBuildFromPath() failed";
  } catch (ODBuildListFromStringFailed const&) {
    return "dsBuildListFromStrings() failed";
  } catch (ODOpenDirNodeFailed const&) {
    return "dsOpenDirNode() failed";
  } catch (ODGetSearchDirNodeFailed const&) {
    return "dsFindDirNodes() failed";
  } catch (ODGetRecordEntryFailed const&) {
    return "dsGetRecordEntry() failed";
  } catch (OpenDirectoryServiceNotAvailable const&) {
    return "dsOpenDirService() failed";
  } catch (...) {
    return "Unknown error";
  }
}

}  // namespace MacintoshPlatform
