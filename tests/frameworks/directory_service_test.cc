#include <DirectoryService/DirectoryService.h>

#include <cstdlib>

#include "frameworks/DirectoryService/references.h"
#include "tests/support/on_scripted_machine.h"
#include "tests/support/scripted_records.h"

namespace {

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
Buffer Allocate(std::size_t size) {
  return Buffer(dsDataBufferAllocate(0, static_cast<UInt32>(size)));
}

std::string BytesOf(tDataNode const& node) {
  return {reinterpret_cast<char const*>(&node.fBufferData), node.fBufferLength};
}

class DirectoryService : public OnScriptedMachine {
 protected:
  void SetUp() override {
    machine_->directory = directory;
    ASSERT_EQ(dsOpenDirService(&service), eDSNoErr);
    node = OpenNode(eDSSearchNodeName);
    ASSERT_NE(node, 0u);
  }
  void TearDown() override {
    EXPECT_EQ(dsCloseDirService(service), eDSNoErr);
    EXPECT_EQ(DirectoryServiceOpenReferenceCount(), 0u);
  }

  tDirNodeReference OpenNode(tDirPatternMatch kind) const {
    Buffer const nodes = Allocate(8192);
    UInt32 number = 0;
    tDataListPtr name = nullptr;
    tDirNodeReference opened = 0;
    EXPECT_EQ(dsFindDirNodes(service, nodes.get(), nullptr, kind, &number, nullptr), eDSNoErr);
    EXPECT_EQ(number, 1u);
    EXPECT_EQ(dsGetDirNodeName(service, nodes.get(), 1, &name), eDSNoErr);
    EXPECT_EQ(dsOpenDirNode(service, List(name).get(), &opened), eDSNoErr);
    return opened;
  }

  tDirStatus Ask(char const* name, char const* attribute, tContextData* context = nullptr) {
    return dsGetRecordList(node, buffer.get(), Strings(name).get(), eDSiExact,
                           Strings(kDSStdRecordTypeUsers).get(), Strings(attribute).get(), 0,
                           &count, context);
  }

  // All values of a record, behind those that are there; what fails on the way ends it.
  tDirStatus ReadValues(UInt32 record) {
    tAttributeListRef list = 0;
    tRecordEntryPtr entry = nullptr;
    tDirStatus status = dsGetRecordEntry(node, buffer.get(), record, &list, &entry);
    for (UInt32 i = 1; status == eDSNoErr && i <= entry->fRecordAttributeCount; ++i) {
      tAttributeValueListRef value_list = 0;
      tAttributeEntryPtr attribute = nullptr;
      status = dsGetAttributeEntry(node, buffer.get(), list, i, &value_list, &attribute);
      for (UInt32 j = 1; status == eDSNoErr && j <= attribute->fAttributeValueCount; ++j) {
        tAttributeValueEntryPtr value = nullptr;
        status = dsGetAttributeValue(node, buffer.get(), j, value_list, &value);
        if (status == eDSNoErr) values.push_back(BytesOf(value->fAttributeValueData));
        dsDeallocAttributeValueEntry(service, value);
      }
      dsDeallocAttributeEntry(service, attribute);
      dsCloseAttributeValueList(value_list);
    }
    dsDeallocRecordEntry(service, entry);
    dsCloseAttributeList(list);
    return status;
  }

  std::shared_ptr<ScriptedRecords> directory = std::make_shared<ScriptedRecords>();
  tDirReference service = 0;
  tDirNodeReference node = 0;
  Buffer buffer = Allocate(8192);
  UInt32 count = 0;  // of the records in the buffer
  std::vector<std::string> values;
};

TEST_F(DirectoryService, HandsOutARecordWithItsValues) {
  directory->Add("ann", {std::string("\0\1", 2), ""});
  count = 1;
  tContextData context = nullptr;
  ASSERT_EQ(Ask("ANN", kDSAttributesAll, &context), eDSNoErr);
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(context, nullptr);
  EXPECT_EQ(directory->last.limit, 1u);
  EXPECT_EQ(directory->last.node, machine::DirectoryNode::kSearch);
  EXPECT_EQ(ReadValues(1), eDSNoErr);
  EXPECT_THAT(values, ElementsAre("ann", std::string("\0\1", 2), ""));
  EXPECT_EQ(ReadValues(2), eDSIndexOutOfRange);

  tAttributeListRef list = 0;
  tRecordEntryPtr entry = nullptr;
  char *name = nullptr, *type = nullptr;
  ASSERT_EQ(dsGetRecordEntry(node, buffer.get(), 1, &list, &entry), eDSNoErr);
  EXPECT_EQ(dsGetRecordNameFromEntry(entry, &name), eDSNoErr);
  EXPECT_EQ(dsGetRecordTypeFromEntry(entry, &type), eDSNoErr);
  EXPECT_STREQ(name, "ann");
  EXPECT_STREQ(type, kDSStdRecordTypeUsers);
  for (void* const made : {name, type}) std::free(made);
  dsDeallocRecordEntry(service, entry);
}

// As who needs the groups of a user asks: the same again with more room.
TEST_F(DirectoryService, AnswersOnceTheBufferIsLargeEnough) {
  std::vector<std::string> sids;
  for (int i = 0; i < 10'000; ++i) sids.push_back(std::to_string(i) + std::string(28, 'x'));
  directory->Add("ann", sids);
  tContextData context = nullptr;
  int larger = 0;
  for (; Ask("ann", kSids, &context) == eDSBufferTooSmall; ++larger) {
    buffer = Allocate(buffer->fBufferSize + 8192);
  }
  EXPECT_EQ(ReadValues(1), eDSNoErr);
  EXPECT_EQ(values, sids);
  EXPECT_GT(larger, 10);
  EXPECT_EQ(directory->calls, 1);
}

TEST_F(DirectoryService, ContinuesWhereTheBufferEnded) {
  std::vector<std::string> names;
  for (int i = 0; i < 50; ++i) names.push_back("user" + std::to_string(i));
  names.insert(names.begin() + 30, std::string(900, 'x'));
  for (std::string const& name : names) directory->Add(name, {});
  buffer = Allocate(500);
  tContextData context = nullptr;
  int larger = 0;
  do {
    tDirStatus const status = Ask(kDSRecordsAll, kDSNAttrRecordName, &context);
    if (status == eDSBufferTooSmall) {
      buffer = Allocate(buffer->fBufferSize + 100);
      ++larger;
      continue;
    }
    ASSERT_EQ(status, eDSNoErr);
    for (UInt32 i = 1; i <= count; ++i) ReadValues(i);
  } while (context != nullptr);
  EXPECT_EQ(values, names);
  EXPECT_GT(larger, 3);
  EXPECT_EQ(directory->calls, 1);

  count = 0;
  ASSERT_EQ(Ask(kDSRecordsAll, kDSNAttrRecordName, &context), eDSNoErr);
  tContextData const stale = context;
  EXPECT_EQ(dsReleaseContinueData(service, context), eDSNoErr);
  EXPECT_EQ(dsReleaseContinueData(service, stale), eDSInvalidContinueData);
  EXPECT_EQ(Ask(kDSRecordsAll, kDSNAttrRecordName, &context), eDSInvalidContinueData);
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
    buffer = Allocate(size);
    count = 0;
    tDirStatus const status = Ask("a", kDSAttributesAll);
    if (status == eDSBufferTooSmall) continue;
    ASSERT_EQ(status, eDSNoErr);
    if (count == std::size(found) && smallest == 0) smallest = size;
    for (UInt32 i = 1; i <= count; ++i) {
      values.clear();
      EXPECT_EQ(ReadValues(i), eDSNoErr);
      EXPECT_EQ(values, found[i - 1]) << i << " of " << size;
    }
  }
  EXPECT_GT(smallest, 300u);
}

TEST_F(DirectoryService, FindsValuesInAnyOrder) {
  std::vector<std::string> sids;
  for (int i = 1; i <= 200; ++i) sids.push_back(std::to_string(i));
  directory->Add("ann", sids);
  ASSERT_EQ(Ask("ann", kSids), eDSNoErr);
  tAttributeListRef list = 0;
  tAttributeValueListRef value_list = 0;
  tRecordEntryPtr record = nullptr;
  tAttributeEntryPtr attribute = nullptr;
  ASSERT_EQ(dsGetRecordEntry(node, buffer.get(), 1, &list, &record), eDSNoErr);
  ASSERT_EQ(dsGetAttributeEntry(node, buffer.get(), list, 1, &value_list, &attribute), eDSNoErr);
  EXPECT_EQ(attribute->fAttributeDataSize, 492u);
  EXPECT_EQ(attribute->fAttributeValueMaxSize, 3u);
  tAttributeValueEntryPtr value = nullptr;
  for (UInt32 index : {100, 101, 99, 200, 199, 1, 150, 2}) {
    ASSERT_EQ(dsGetAttributeValue(node, buffer.get(), index, value_list, &value), eDSNoErr);
    EXPECT_EQ(BytesOf(value->fAttributeValueData), std::to_string(index));
    dsDeallocAttributeValueEntry(service, value);
  }
  EXPECT_EQ(dsGetAttributeValue(node, buffer.get(), 201, value_list, &value), eDSIndexOutOfRange);
  dsDeallocRecordEntry(service, record);
  dsDeallocAttributeEntry(service, attribute);
}

TEST_F(DirectoryService, SaysWhyThereIsNoAnswer) {
  EXPECT_EQ(Ask("nobody", kDSAttributesAll), eDSNoErr);
  EXPECT_EQ(count, 0u);
  for (auto const& [outcome, status] : {std::pair(Outcome::kAbsent, eDSServiceUnavailable),
                                        {Outcome::kNotSupported, eDSServiceUnavailable},
                                        {Outcome::kPermissionRefused, eDSPermissionError},
                                        {Outcome::kMalformed, eDSBadPacket},
                                        {Outcome::kTimedOut, eDSReceiveFailed}}) {
    directory->failure = outcome;
    EXPECT_EQ(Ask("ann", kDSAttributesAll), status);
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
  ASSERT_EQ(Ask("ann", kDSAttributesAll), eDSNoErr);
  DirectoryServiceSetLastReference(UINT32_MAX - 3);
  tDirNodeReference const local = OpenNode(eDSLocalHostedNodes);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ReadValues(1), eDSNoErr);
  EXPECT_EQ(values.size(), 9u);
  EXPECT_EQ(dsCloseDirNode(local), eDSNoErr);
  EXPECT_EQ(DirectoryServiceOpenReferenceCount(), 2u);
}

TEST_F(DirectoryService, EndsAllThatWasOpenedOfIt) {
  directory->Add("ann", {"one", "two"});
  directory->Add("bob", {});
  buffer = Allocate(110);
  tContextData context = nullptr;
  ASSERT_EQ(Ask(kDSRecordsAll, kDSNAttrRecordName, &context), eDSNoErr);
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
  EXPECT_EQ(ReadValues(1), eDSInvalidReference);
}

// The buffer is the caller's, and may hold anything.
TEST_F(DirectoryService, ReadsADamagedBufferWithoutHarm) {
  directory->Add("ann", {"one", "two"});
  buffer = Allocate(256);
  ASSERT_EQ(Ask("ann", kDSAttributesAll), eDSNoErr);
  std::string const content = BytesOf(*buffer);
  buffer->fBufferLength = 257;
  EXPECT_NE(ReadValues(1), eDSNoErr);
  std::size_t refused = 0;
  for (std::size_t at = 0; at < content.size(); ++at) {
    for (char const damage : {'\x01', '\x7F', '\xFF'}) {
      // No larger than its content, so that reading behind it is noticed.
      buffer = Allocate(content.size());
      buffer->fBufferLength = buffer->fBufferSize;
      char* const bytes = reinterpret_cast<char*>(&buffer->fBufferData);
      std::copy(content.begin(), content.end(), bytes);
      bytes[at] ^= damage;
      refused += ReadValues(1) != eDSNoErr;
    }
  }
  EXPECT_GT(refused, content.size());
}

TEST(DirectoryLists, AreMadeOfPaths) {
  std::tuple<char const*, char const*, char const*, UInt32> const cases[] = {
      {"/Local/Default", "/", ":Local:Default", 2},
      {"//a//", "/", ":a", 1},
      {"", "/", "", 0},
      {"a::b:c", "::", ":a:b:c", 2}};
  for (auto const& [path, separator, expected, nodes] : cases) {
    List const list(dsBuildFromPath(0, path, separator));
    ASSERT_NE(list, nullptr) << path;
    EXPECT_EQ(list->fDataNodeCount, nodes) << path;
    char* const joined = dsGetPathFromList(0, list.get(), ":");
    EXPECT_STREQ(joined, expected);
    std::free(joined);
  }
  List const list = Strings("a");
  EXPECT_EQ(dsAppendStringToListAlloc(0, list.get(), ""), eDSNoErr);
  EXPECT_EQ(list->fDataNodeCount, 2u);
  EXPECT_EQ(dsBuildFromPath(0, "a", ""), nullptr);
}

}  // namespace
