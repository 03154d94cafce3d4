// What crosses to the evaluator: strings in the report encoding, versions, codes.
#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "frame/combine.h"
#include "frame/inspector_strings.h"
#include "frame/inspector_version.h"
#include "frame/report_encoding.h"
#include "portable/core_foundation/strings.h"
#include "tests/support/recording_evaluator.h"

namespace {

using namespace std::string_literals;

using Store = SettingStore<CFPreferenceSettingIterator>;

// Both kinds of context and the settings in one object.
class Host : public InspectorContext, public InspectorSettingsContext, public Store {
 public:
  explicit Host(StoreFunction store = Self) : InspectorSettingsContext(store) {}
  CFPreferenceSettingIterator FindItem(ConstData section, ConstData name) override {
    bool const is_it = MakeString(section) == "Client" &&
                       MakeString(name) == "_KPXClient_DeploymentEncoding_IANAName";
    return is_it && encoding ? CFPreferenceSettingIterator(*encoding) : End();
  }
  std::optional<std::string> encoding;

 private:
  static Store& Self(InspectorSettingsContext& context) { return dynamic_cast<Host&>(context); }
};

class Conversions : public testing::Test {
 protected:
  void SetUp() override { evaluator_.allocations.clear(); }
  void TearDown() override { evaluator_.context = nullptr; }

  // The text as the evaluator gets it with this report encoding.
  std::string Report(std::string const& utf8, std::string const& encoding) {
    Host host;
    host.encoding = encoding;
    evaluator_.context = &host;
    return Text(AsInspectorString(MakeCFString(utf8, kCFStringEncodingUTF8).Get()));
  }

  static std::string Text(inspector_string const& string) {
    return {reinterpret_cast<char const*>(string.start), string.length};
  }

  RecordingEvaluator& evaluator_ = RecordingEvaluator::Instance();
};

TEST_F(Conversions, TextIsReportedInTheSetEncoding) {
  struct {
    char const* encoding;
    std::string utf8, reported;
  } const cases[] = {{"UTF-8", "caf\u00E9 \u4E2D", "caf\u00E9 \u4E2D"},
                     {"iso-8859-1", "caf\u00E9 \u4E2D\u20AC", "caf\xE9 ??"},
                     {"macintosh", "caf\u00E9", "caf\x8E"},
                     {"US-ASCII", "caf\u00E9", "caf?"},
                     {"no such encoding", "\u20AC\u4E2D", "\x80?"},
                     {"UTF-8", "", ""},
                     {"US-ASCII", "a\0b"s, "a\0b"s}};
  for (auto const& row : cases) {
    evaluator_.allocations.clear();
    EXPECT_EQ(Report(row.utf8, row.encoding), row.reported) << row.encoding;
    EXPECT_THAT(evaluator_.allocations, testing::ElementsAre(row.reported.size())) << row.encoding;
  }
}

TEST_F(Conversions, AByteOrderMarkStandsInFrontOfUTF16EvenWhenEmpty) {
  std::string const a = Report("A", "UTF-16");
  EXPECT_THAT(a, testing::AnyOf("\xFE\xFF\0A"s, "\xFF\xFE\x41\0"s));
  EXPECT_EQ(Report("", "UTF-16"), a.substr(0, 2));
}

TEST_F(Conversions, TheReportEncodingFallsBackToWindowsLatin1) {
  constexpr TextEncoding kWindowsLatin1 = 0x0500;
  InspectorContext without_settings;
  Host host;
  for (InspectorContext* context : {static_cast<InspectorContext*>(nullptr), &without_settings,
                                    static_cast<InspectorContext*>(&host)}) {
    evaluator_.context = context;
    EXPECT_EQ(GetReportEncodingFromInspector(), kWindowsLatin1);
  }

  // The last would be "UTF-8", cut to a length byte.
  for (std::string const& name : {"UTF-8"s, ""s, "bogus"s, "windows-1252"s, std::string(255, 'x'),
                                  std::string(256, 'x'), "UTF-8" + std::string(256, 'x')}) {
    host.encoding = name;
    EXPECT_EQ(GetReportEncodingFromInspector(),
              name == "UTF-8" ? kCFStringEncodingUTF8 : kWindowsLatin1)
        << name;
    EXPECT_EQ(GetReportEncodingNameFromInspector(), name);
  }
}

TEST_F(Conversions, ASettingsContextWithoutAStoreIsAnError) {
  Host host(nullptr);
  evaluator_.context = &host;
  EXPECT_THROW(AsInspectorString(CFSTR("text")), InspectorSettingsContextError);
}

TEST_F(Conversions, BytesAreWrappedOrCopied) {
  std::string const text = "bytes";
  ConstData const range(reinterpret_cast<unsigned char const*>(text.data()), text.size());
  EXPECT_EQ(AsInspectorString(range).start, range.begin);
  EXPECT_EQ(AsInspectorString(range).length, 5u);
  EXPECT_TRUE(evaluator_.allocations.empty());

  inspector_string const copy = CopyToInspectorString(range);
  EXPECT_NE(copy.start, range.begin);
  EXPECT_EQ(Text(copy), "bytes");
  EXPECT_EQ(Text(CopyToInspectorString(range + ConstData() + range)), "bytesbytes");
  EXPECT_EQ(CopyToInspectorString(ConstData()).length, 0u);
  EXPECT_THAT(evaluator_.allocations, testing::ElementsAre(5, 10, 0));
}

TEST_F(Conversions, PackedVersionsAreReadFieldByField) {
  std::pair<std::uint32_t, std::vector<int>> const cases[] = {
      {0x10208000, {10, 2, 0, 0x80, 0}},
      {0x02305012, {2, 3, 0, 0x50, 0x12}},
      {0xFFFFFFFF, {165, 15, 15, 0xFF, 0xFF}}};
  for (auto const& [packed, fields] : cases) {
    inspector_version const version = MacintoshPlatform::inspector_version(packed);
    EXPECT_THAT(fields, testing::ElementsAre(version.major, version.minor, version.bug_fix,
                                             version.stage, version.non_release_revision));
    EXPECT_TRUE(ConstData(version.text).IsEmpty());
  }
}

static_assert(Combine(0x41, 0x50, 0x50, 0x4C) == 0x4150504C);
static_assert(Combine(0xFF, 0, 0, 1) == 0xFF000001);

}  // namespace
