#include <DirectoryService/DirectoryService.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

#include "frameworks/DirectoryService/references.h"
#include "tests/support/scripted_machine.h"
#include "tests/support/scripted_records.h"

namespace {

using machine::DirectoryQuery;
using machine::DirectoryRecord;
using machine::Outcome;
using testing::ElementsAre;

constexpr char kSids[] = "dsAttrTypeNative:tokenGroups";

struct FreeList {
  void operator()(tDataListPtr list) const {
    dsDataListDeallocate(0, list);
    std::free(list);
  }
};
using List = std::unique_ptr<tDataList, FreeList>;
List Strings(char const* text) { return List(dsBuildListFromStrings(0, text, nullptr)); }

struct FreeBuffer {
  void operator()(tDataBufferPtr buffer) const { dsDataBufferDeAllocate(0, buffer); }
};
using Buffer = std::unique_ptr<tDataBuffer, FreeBuffer>;
Buffer Allocate(UInt32 size) { return Buffer(dsDataBufferAllocate(0, size)); }

std::string BytesOf(tDataNode const& node) {
  return {reinterpret_cast<char const*>(&node.fBufferData), node.fBufferLength};
}

class DirectoryService : public testing::Test {
 protected:
  void SetUp() override {
    machine->directory = directory;
    ASSERT_EQ(dsOpenDirService(&service), eDSNoErr);
    node = OpenNode(eDSSearchNodeName);
    ASSERT_NE(node, 0u);
  }
  void TearDown() override {
    EXPECT_EQ(dsCloseDirService(service), eDSNoErr);
    EXPECT_EQ(DirectoryServiceOpenReferenceCount(), 0u);
  }

  tDirNodeReference OpenNode(tDirPatternMatch kind) {
    Buffer const buffer = Allocate(8192);
    UInt32 count = 0;
    tDataListPtr name = nullptr;
    tDirNodeReference opened = 0;
    EXPECT_EQ(dsFindDirNodes(service, buffer.get(), nullptr, kind, &count, nullptr), eDSNoErr);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(dsGetDirNodeName(service, buffer.get(), 1, &name), eDSNoErr);
    EXPECT_EQ(dsOpenDirNode(service, List(name).get(), &opened), eDSNoErr);
    return opened;
  }

  tDirStatus Ask(tDataBufferPtr buffer, char const* name, char const* attribute, UInt32& count,
                 tContextData* context) {
    return dsGetRecordList(node, buffer, Strings(name).get(), eDSiExact,
                           Strings(kDSStdRecordTypeUsers).get(), Strings(attribute).get(), 0,
                           &count, context);
  }

  // All values of a record; what fails on the way ends it.
  tDirStatus ReadValues(tDataBufferPtr buffer, UInt32 record, std::vector<std::string>& values) {
    tAttributeListRef list = 0;
    tRecordEntryPtr entry = nullptr;
    tDirStatus status = dsGetRecordEntry(node, buffer, record, &list, &entry);
    if (status != eDSNoErr) return status;
    UInt32 const count = entry->fRecordAttributeCount;
    dsDeallocRecordEntry(service, entry);
    for (UInt32 i = 1; i <= count && status == eDSNoErr; ++i) {
      status = ReadAttribute(buffer, list, i, values);
    }
    dsCloseAttributeList(list);
    return status;
  }
  tDirStatus ReadAttribute(tDataBufferPtr buffer, tAttributeListRef list, UInt32 index,
                           std::vector<std::string>& values) {
    tAttributeValueListRef value_list = 0;
    tAttributeEntryPtr entry = nullptr;
    tDirStatus status = dsGetAttributeEntry(node, buffer, list, index, &value_list, &entry);
    if (status != eDSNoErr) return status;
    UInt32 const count = entry->fAttributeValueCount;
    dsDeallocAttributeEntry(service, entry);
    for (UInt32 i = 1; i <= count && status == eDSNoErr; ++i) {
      tAttributeValueEntryPtr value = nullptr;
      status = dsGetAttributeValue(node, buffer, i, value_list, &value);
      if (status != eDSNoErr) break;
      values.push_back(BytesOf(value->fAttributeValueData));
      dsDeallocAttributeValueEntry(service, value);
    }
    dsCloseAttributeValueList(value_list);
    return status;
  }

  std::shared_ptr<ScriptedRecords> directory = std::make_shared<ScriptedRecords>();
  std::shared_ptr<ScriptedMachine> machine = std::make_shared<ScriptedMachine>();
  MachineInUse in_use{machine};
  tDirReference service = 0;
  tDirNodeReference node = 0;
};

TEST_F(DirectoryService, HandsOutARecordWithItsValues) {
  directory->Add("ann", {std::string("\0\1", 2), ""});
  Buffer const buffer = Allocate(8192);
  UInt32 count = 1;
  tContextData context = nullptr;
  ASSERT_EQ(Ask(buffer.get(), "ANN", kDSAttributesAll, count, &context), eDSNoErr);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(context, nullptr);
  EXPECT_EQ(directory->last.limit, 1u);
  EXPECT_EQ(directory->last.node, machine::DirectoryNode::kSearch);
  std::vector<std::string> values;
  EXPECT_EQ(ReadValues(buffer.get(), 1, values), eDSNoErr);
  EXPECT_THAT(values, ElementsAre("ann", std::string("\0\1", 2), ""));
  EXPECT_EQ(ReadValues(buffer.get(), 2, values), eDSIndexOutOfRange);

  tAttributeListRef list = 0;
  tRecordEntryPtr entry = nullptr;
  char *name = nullptr, *type = nullptr;
  ASSERT_EQ(dsGetRecordEntry(node, buffer.get(), 1, &list, &entry), eDSNoErr);
  EXPECT_EQ(dsGetRecordNameFromEntry(entry, &name), eDSNoErr);
  EXPECT_EQ(dsGetRecordTypeFromEntry(entry, &type), eDSNoErr);
  EXPECT_STREQ(name, "ann");
  EXPECT_STREQ(type, kDSStdRecordTypeUsers);
  std::free(name);
  std::free(type);
  dsDeallocRecordEntry(service, entry);
}

// As who needs the groups of a user asks: the same again with more room.
TEST_F(DirectoryService, AnswersOnceTheBufferIsLargeEnough) {
  std::vector<std::string> sids;
  for (int i = 0; i < 10'000; ++i) sids.push_back(std::to_string(i) + std::string(28, 'x'));
  directory->Add("ann", sids);
  tDirStatus status = eDSBufferTooSmall;
  std::vector<std::string> values;
  int asked = 0;
  for (UInt32 size = 8192; status == eDSBufferTooSmall; size += 8192) {
    Buffer const buffer = Allocate(size);
    UInt32 count = 0;
    tContextData context = nullptr;
    status = Ask(buffer.get(), "ann", kSids, count, &context);
    ++asked;
    if (status == eDSNoErr) status = ReadValues(buffer.get(), 1, values);
  }
  EXPECT_EQ(status, eDSNoErr);
  EXPECT_EQ(values, sids);
  EXPECT_GT(asked, 10);
  EXPECT_EQ(directory->calls, 1);
}

TEST_F(DirectoryService, ContinuesWhereTheBufferEnded) {
  std::vector<std::string> names;
  for (int i = 0; i < 50; ++i) names.push_back("user" + std::to_string(i));
  names.insert(names.begin() + 30, std::string(900, 'x'));
  for (std::string const& name : names) directory->Add(name, {});
  Buffer buffer = Allocate(500);
  tContextData context = nullptr;
  std::vector<std::string> found;
  UInt32 count = 0;
  int larger = 0;
  do {
    tDirStatus const status = Ask(buffer.get(), kDSRecordsAll, kDSNAttrRecordName, count, &context);
    if (status == eDSBufferTooSmall) {
      buffer = Allocate(buffer->fBufferSize + 100);
      ++larger;
      continue;
    }
    ASSERT_EQ(status, eDSNoErr);
    for (UInt32 i = 1; i <= count; ++i) ReadValues(buffer.get(), i, found);
  } while (context != nullptr);
  EXPECT_EQ(found, names);
  EXPECT_GT(larger, 3);
  EXPECT_EQ(directory->calls, 1);

  count = 0;
  ASSERT_EQ(Ask(buffer.get(), kDSRecordsAll, kDSNAttrRecordName, count, &context), eDSNoErr);
  tContextData const stale = context;
  EXPECT_EQ(dsReleaseContinueData(service, context), eDSNoErr);
  EXPECT_EQ(dsReleaseContinueData(service, stale), eDSInvalidContinueData);
  EXPECT_EQ(Ask(buffer.get(), kDSRecordsAll, kDSNAttrRecordName, count, &context),
            eDSInvalidContinueData);
}

// Of which no two that follow one another have all in common, or nothing.
TEST_F(DirectoryService, HandsOutRecordsOfManyKinds) {
  directory->answers_as_is = true;
  directory->records = {{"A", "bare", "n", {}},
                        {"B", "bare", "n", {}},
                        {"B", "b", "n", {{"x", {"b", "B", "n"}}, {"none", {}}, {"y", {""}}}},
                        {"B", "c", "n", {{"x", {"b", "B", "n"}}, {"none", {}}, {"y", {"c"}}}},
                        {"B", "c", "m", {{"x", {"m"}}}},
                        {"B", "c", "m", {{"x", {"c", "B"}}}}};
  for (machine::DirectoryRecord& record : directory->records) {
    if (!record.attributes.empty()) record.Add(machine::kRecordName, record.name);
  }
  std::vector<std::string> const found[] = {
      {}, {}, {"b", "B", "n", "", "b"}, {"b", "B", "n", "c", "c"}, {"m", "c"}, {"c", "B", "c"}};
  UInt32 smallest = 0;
  for (UInt32 size = 0; size < 600; ++size) {
    Buffer const buffer = Allocate(size);
    UInt32 count = 0;
    tDirStatus const status = Ask(buffer.get(), "a", kDSAttributesAll, count, nullptr);
    if (status == eDSBufferTooSmall) continue;
    ASSERT_EQ(status, eDSNoErr);
    if (count == std::size(found) && smallest == 0) smallest = size;
    for (UInt32 i = 1; i <= count; ++i) {
      std::vector<std::string> values;
      EXPECT_EQ(ReadValues(buffer.get(), i, values), eDSNoErr);
      EXPECT_EQ(values, found[i - 1]) << i << " of " << size;
    }
  }
  EXPECT_GT(smallest, 300u);
}

TEST_F(DirectoryService, FindsValuesInAnyOrder) {
  std::vector<std::string> sids;
  for (int i = 1; i <= 200; ++i) sids.push_back(std::to_string(i));
  directory->Add("ann", sids);
  Buffer const buffer = Allocate(8192);
  UInt32 count = 0;
  ASSERT_EQ(Ask(buffer.get(), "ann", kSids, count, nullptr), eDSNoErr);
  tAttributeListRef list = 0;
  tAttributeValueListRef values = 0;
  tRecordEntryPtr record = nullptr;
  tAttributeEntryPtr attribute = nullptr;
  ASSERT_EQ(dsGetRecordEntry(node, buffer.get(), 1, &list, &record), eDSNoErr);
  ASSERT_EQ(dsGetAttributeEntry(node, buffer.get(), list, 1, &values, &attribute), eDSNoErr);
  EXPECT_EQ(attribute->fAttributeDataSize, 492u);
  EXPECT_EQ(attribute->fAttributeValueMaxSize, 3u);
  for (UInt32 index : {100, 101, 99, 200, 199, 1, 150, 2}) {
    tAttributeValueEntryPtr value = nullptr;
    ASSERT_EQ(dsGetAttributeValue(node, buffer.get(), index, values, &value), eDSNoErr);
    EXPECT_EQ(BytesOf(value->fAttributeValueData), std::to_string(index));
    dsDeallocAttributeValueEntry(service, value);
  }
  tAttributeValueEntryPtr none = nullptr;
  EXPECT_EQ(dsGetAttributeValue(node, buffer.get(), 201, values, &none), eDSIndexOutOfRange);
  dsDeallocRecordEntry(service, record);
  dsDeallocAttributeEntry(service, attribute);
}

TEST_F(DirectoryService, SearchesByValue) {
  directory->Add("ann", {"S-1-5-7"});
  directory->Add("bob", {"S-1-5-8"});
  Buffer const buffer = Allocate(8192), attribute(dsDataNodeAllocateString(service, kSids)),
               pattern(dsDataNodeAllocateString(service, "s-1-5-8"));
  UInt32 count = 1;
  ASSERT_EQ(dsDoAttributeValueSearchWithData(
                node, buffer.get(), Strings(kDSStdRecordTypeUsers).get(), attribute.get(),
                eDSiExact, pattern.get(), Strings(kDSNAttrRecordName).get(), 0, &count, nullptr),
            eDSNoErr);
  std::vector<std::string> values;
  EXPECT_EQ(ReadValues(buffer.get(), 1, values), eDSNoErr);
  EXPECT_THAT(values, ElementsAre("bob"));
}

TEST_F(DirectoryService, SaysWhyThereIsNoAnswer) {
  Buffer const buffer = Allocate(8192);
  UInt32 count = 0;
  EXPECT_EQ(Ask(buffer.get(), "nobody", kDSAttributesAll, count, nullptr), eDSNoErr);
  EXPECT_EQ(count, 0u);
  std::pair<Outcome, tDirStatus> const cases[] = {
      {Outcome::kAbsent, eDSServiceUnavailable},
      {Outcome::kNotSupported, eDSServiceUnavailable},
      {Outcome::kPermissionRefused, eDSPermissionError},
      {Outcome::kMalformed, eDSBadPacket},
      {Outcome::kTimedOut, eDSReceiveFailed},
  };
  for (auto const& [outcome, status] : cases) {
    directory->failure = outcome;
    EXPECT_EQ(Ask(buffer.get(), "ann", kDSAttributesAll, count, nullptr), status);
  }
}

TEST_F(DirectoryService, KnowsWhatIsOpen) {
  tDirNodeReference const local = OpenNode(eDSLocalHostedNodes);
  EXPECT_EQ(dsCloseDirNode(service), eDSInvalidRefType);
  EXPECT_EQ(dsCloseDirNode(local), eDSNoErr);
  EXPECT_EQ(dsCloseDirNode(local), eDSInvalidReference);
  tDirNodeReference other = 0;
  EXPECT_EQ(dsOpenDirNode(service, List(dsBuildFromPath(service, "/Nowhere", "/")).get(), &other),
            eDSOpenNodeFailed);
  EXPECT_EQ(dsOpenDirNode(service, nullptr, &other), eDSNullNodeName);
}

// Also when all numbers were used: 0 is none, and what is open keeps its own.
TEST_F(DirectoryService, BeginsNumbersAnew) {
  directory->Add("ann", {"one", "two"});
  Buffer const buffer = Allocate(8192);
  UInt32 count = 0;
  ASSERT_EQ(Ask(buffer.get(), "ann", kDSAttributesAll, count, nullptr), eDSNoErr);
  DirectoryServiceSetLastReference(UINT32_MAX - 3);
  tDirNodeReference const local = OpenNode(eDSLocalHostedNodes);
  std::vector<std::string> values;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ReadValues(buffer.get(), 1, values), eDSNoErr);
  EXPECT_EQ(values.size(), 9u);
  EXPECT_EQ(dsCloseDirNode(local), eDSNoErr);
  EXPECT_EQ(DirectoryServiceOpenReferenceCount(), 2u);
}

TEST_F(DirectoryService, EndsAllThatWasOpenedOfIt) {
  directory->Add("ann", {"one", "two"});
  directory->Add("bob", {});
  Buffer const buffer = Allocate(110);
  UInt32 count = 0;
  tContextData context = nullptr;
  ASSERT_EQ(Ask(buffer.get(), kDSRecordsAll, kDSNAttrRecordName, count, &context), eDSNoErr);
  EXPECT_NE(context, nullptr);
  tAttributeListRef list = 0;
  tRecordEntryPtr entry = nullptr;
  ASSERT_EQ(dsGetRecordEntry(node, buffer.get(), 1, &list, &entry), eDSNoErr);
  dsDeallocRecordEntry(service, entry);
  tDirReference other = 0;
  ASSERT_EQ(dsOpenDirService(&other), eDSNoErr);
  EXPECT_EQ(DirectoryServiceOpenReferenceCount(), 5u);
  EXPECT_EQ(dsCloseDirService(std::exchange(service, other)), eDSNoErr);
  EXPECT_EQ(DirectoryServiceOpenReferenceCount(), 1u);
  EXPECT_EQ(dsGetRecordEntry(node, buffer.get(), 1, &list, &entry), eDSInvalidReference);
}

// The buffer is the caller's, and may hold anything.
TEST_F(DirectoryService, ReadsADamagedBufferWithoutHarm) {
  directory->Add("ann", {"one", "two"});
  Buffer const good = Allocate(256);
  UInt32 count = 0;
  ASSERT_EQ(Ask(good.get(), "ann", kDSAttributesAll, count, nullptr), eDSNoErr);
  std::string const content = BytesOf(*good);
  std::size_t refused = 0;
  for (std::size_t at = 0; at < content.size(); ++at) {
    for (char const damage : {'\x01', '\x7F', '\xFF'}) {
      // No larger than its content, so that reading behind it is noticed.
      Buffer const bad = Allocate(static_cast<UInt32>(content.size()));
      std::copy(content.begin(), content.end(), reinterpret_cast<char*>(&bad->fBufferData));
      bad->fBufferLength = good->fBufferLength;
      reinterpret_cast<char*>(&bad->fBufferData)[at] ^= damage;
      std::vector<std::string> values;
      refused += ReadValues(bad.get(), 1, values) != eDSNoErr;
    }
  }
  EXPECT_GT(refused, content.size());
  good->fBufferLength = good->fBufferSize + 1;
  std::vector<std::string> values;
  EXPECT_NE(ReadValues(good.get(), 1, values), eDSNoErr);
}

TEST(DirectoryLists, AreMadeOfPaths) {
  struct {
    char const *path, *separator, *joined;
    UInt32 count;
  } const cases[] = {{"/Local/Default", "/", ":Local:Default", 2},
                     {"//a//", "/", ":a", 1},
                     {"", "/", "", 0},
                     {"a::b:c", "::", ":a:b:c", 2}};
  for (auto const& test : cases) {
    List const list(dsBuildFromPath(0, test.path, test.separator));
    ASSERT_NE(list, nullptr) << test.path;
    EXPECT_EQ(list->fDataNodeCount, test.count) << test.path;
    char* const joined = dsGetPathFromList(0, list.get(), ":");
    EXPECT_STREQ(joined, test.joined);
    std::free(joined);
  }
  List const list = Strings("a");
  EXPECT_EQ(dsAppendStringToListAlloc(0, list.get(), ""), eDSNoErr);
  EXPECT_EQ(list->fDataNodeCount, 2u);
  EXPECT_EQ(dsBuildFromPath(0, "a", ""), nullptr);
}

}  // namespace
