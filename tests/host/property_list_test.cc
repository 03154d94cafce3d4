// Property lists as the command shows them, against what Python's own library says.

#include <fstream>
#include <nlohmann/json.hpp>

#include "host/property_list_json.h"
#include "tests/frameworks/cf_text.h"
#include "tests/host/child_process.h"
#include "tests/support/binary_list_text.h"
#include "tests/support/temporary_folder.h"

namespace gatotu::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;

template <class Make>
std::string Json(Make const& make, std::size_t most = host::kMostPropertyListBytes) {
  CFTypeRef const object = make();
  std::string text;
  bool const is_whole = host::AppendPropertyListJson(object, text, most);
  CFRelease(object);
  return is_whole ? text : "too long";
}

std::string JsonOfXml(std::string const& value, std::size_t most = host::kMostPropertyListBytes) {
  return Json([&] { return Parsed("<plist>" + value + "</plist>").release(); }, most);
}

TEST(PropertyListJson, WritesEveryKindOfValue) {
  std::pair<std::string, std::string> const cases[] = {
      {"<string>a\"\\\t\n&#127;/\u00e9\u2603\U0001F600</string>",
       "\"a\\\"\\\\\\t\\n\\u007f/\u00e9\u2603\U0001F600\""},
      {"<integer>18446744073709551615</integer>", "18446744073709551615"},
      {"<real>1</real>", "1.0"},
      {"<real>0.1</real>", "0.1"},
      {"<real>nan</real>", "\"NaN\""},
      {"<real>-inf</real>", "\"-Infinity\""},
      {"<date>1969-12-31T23:59:59Z</date>", "\"1969-12-31T23:59:59.000000+00:00\""},
      {"<data></data>", "\"\""},
      {"<data>+/++</data>", "\"+/++\""},
      {"<data>AA==</data>", "\"AA==\""},
      {"<array><array/><dict><key>k</key><array><true/><false/></array></dict></array>",
       "[[],{\"k\":[true,false]}]"},
  };
  for (auto const& [xml, json] : cases) EXPECT_EQ(JsonOfXml(xml), json) << xml;

  UniChar const units[] = {0xD800, 'a', 0xDC80, 0xD83D, 0xDE00, 0xDBFF};
  EXPECT_EQ(Json([&] { return CFStringCreateWithCharacters(nullptr, units, 6); }),
            "\"\\ud800a\\udc80\U0001F600\\udbff\"");
  // A pair that lies across the parts in which a string is read.
  EXPECT_EQ(JsonOfXml("<string>" + std::string(255, 'x') + "\U0001F600</string>"),
            '"' + std::string(255, 'x') + "\U0001F600\"");
  EXPECT_EQ(Json([] { return CFDateCreate(nullptr, 1e300); }),
            "\"1e+300 seconds since 2001-01-01T00:00:00Z\"");
}

TEST(PropertyListJson, StopsAtItsBound) {
  for (std::string const& xml :
       {std::string("<array><string>abc</string></array>"), std::string("<data>AAAA</data>"),
        std::string("<dict><key>abcdef</key><true/></dict>"), std::string("<array/>"),
        std::string("<array><array><array/></array><true/></array>")}) {
    std::string const whole = JsonOfXml(xml);
    EXPECT_EQ(JsonOfXml(xml, whole.size()), whole);
    for (std::size_t most = 0; most < whole.size(); ++most) {
      EXPECT_EQ(JsonOfXml(xml, most), "too long") << xml << most;
    }
  }
}

TEST(PropertyListJson, GoesAsDeepAsTheList) {
  CFTypeRef deep = CFRetain(kCFBooleanTrue);
  constexpr std::size_t kDepth = 1000000;
  for (std::size_t i = 0; i < kDepth; ++i) {
    CFTypeRef const inner = deep;
    deep = CFArrayCreate(nullptr, const_cast<void const**>(&inner), 1, &kCFTypeArrayCallBacks);
    CFRelease(inner);
  }
  EXPECT_EQ(Json([&] { return deep; }),
            std::string(kDepth, '[') + "true" + std::string(kDepth, ']'));
}

class ListFile : public testing::Test {
 protected:
  // `EXPRESSION of file "..."` in JSON.
  nlohmann::json Ask(std::string const& expression, std::string const& name) const {
    std::string const path = folder_.Path(name);
    std::string const text = expression + " of file \"" + path + "\"";
    // What is to end by itself has the time for that on a busy machine too.
    ProcessResult const run = Gatotu({"--format", "json", "--time-limit", "10m", text});
    EXPECT_LE(run.status, 2) << run.errors;
    return nlohmann::json::parse(run.output);
  }

  TemporaryFolder folder_;
};

constexpr char kPython[] = R"python(
import base64, datetime, json, plistlib, random, sys
random.seed(5)
every = [chr(c) for c in range(0x20, 0x110000) if not 0xD800 <= c < 0xE000 and c & 0xFFFE != 0xFFFE]
def text(n):
    return ''.join(random.choice(every) for _ in range(n))
values = [0, 1, -1, 2**31, -2**31 - 1, 2**63 - 1, -2**63, 2**63, 2**64 - 1, 0.5, -1e300, 5e-324, 1.0,
          True, False, '', 'caf\u00e9 \u4e2d \U0001f600', b'', b'\0\xff' * 500, [], {},
          datetime.datetime(1601, 2, 3, 4, 5, 6), datetime.datetime(2262, 5, 6, 7, 8, 9)]
values += [text(20) for _ in range(200)]
root = {text(7): [v, {'x': v}] for v in values}
def shown(v):
    if isinstance(v, bytes): return base64.b64encode(v).decode()
    if isinstance(v, datetime.datetime): return v.strftime('%Y-%m-%dT%H:%M:%S.000000+00:00')
    if isinstance(v, list): return [shown(x) for x in v]
    if isinstance(v, dict): return {k: shown(x) for k, x in v.items()}
    return v
folder = sys.argv[1]
for name, form in (('xml', plistlib.FMT_XML), ('binary', plistlib.FMT_BINARY)):
    plistlib.dump(root, open(folder + '/' + name, 'wb'), fmt=form)
json.dump(shown(root), open(folder + '/expected', 'w'))
)python";

TEST_F(ListFile, ComesOutAsPythonWroteIt) {
  folder_.Write("make.py", kPython);
  ProcessResult const judge = RunShell("cd " + folder_.Path() + " && python3 make.py .");
  if (judge.status != 0) GTEST_SKIP() << "no python3 with plistlib here";
  nlohmann::json const expected = nlohmann::json::parse(std::ifstream(folder_.Path("expected")));
  for (std::string const name : {"xml", "binary"}) {
    EXPECT_EQ(Ask("dictionary", name)["values"][0], expected) << name;
    nlohmann::json const as_text = Ask("(it as json) of dictionary", name)["values"][0];
    EXPECT_EQ(nlohmann::json::parse(as_text.get<std::string>()), expected) << name;
  }
}

TEST_F(ListFile, HasNoTextButJson) {
  folder_.Write(
      "list",
      "<plist><dict><key>a</key><array><integer>1</integer><string>\u2603</string></array>"
      "</dict></plist>");
  std::pair<std::string, std::string> const cases[] = {
      {"dictionary", "[{\"a\":[1,\"\u2603\"]}]"},
      {"array \"a\" of dictionary", "[[1,\"\u2603\"]]"},
      {"values of array \"a\" of dictionary", "[1,\"\u2603\"]"},
      {"(it, size of it) of dictionary", "[[{\"a\":[1,\"\u2603\"]},1]]"},
      {"(it as json) of value of entry of dictionary", "[\"[1,\\\"\u2603\\\"]\"]"},
      {"strings of values of array \"a\" of dictionary", "[\"?\"]"},
  };
  for (auto const& [expression, values] : cases) {
    EXPECT_EQ(Ask(expression, "list")["values"], nlohmann::json::parse(values)) << expression;
  }
  EXPECT_EQ(Ask("entry of dictionary", "list")["error"]["code"], "not-showable");

  EXPECT_THAT(Gatotu({"dictionary of file \"" + folder_.Path("list") + "\""}),
              Ends(2, "",
                   AllOf(HasSubstr("a dictionary cannot be shown as text"), HasSubstr("as: json"),
                         HasSubstr("entry"))));
}

TEST_F(ListFile, WhoseSharingIsEndlessIsRefusedClearly) {
  folder_.Write("list", SharedArraysText(28));
  EXPECT_EQ(Ask("size of array", "list")["values"][0], 2);
  nlohmann::json const whole = Ask("array", "list");
  EXPECT_EQ(whole["error"]["code"], "answer-too-long");
  EXPECT_EQ(whole["values"], nlohmann::json::array());
  EXPECT_THAT(Ask("(it as json) of array", "list")["error"]["message"].get<std::string>(),
              HasSubstr("268435456 bytes"));

  std::string const text = "array of file \"" + folder_.Path("list") + "\"";
  auto const run = Gatotu({"--format", "json", "--time-limit", "50ms", text});
  EXPECT_EQ(nlohmann::json::parse(run.output)["error"]["code"], "time-limit");
  EXPECT_EQ(run.status, 3);
}

TEST(Vocabulary, NamesTheCommandsOwnCasts) {
  auto const lines = Lines(Gatotu({"vocabulary", "--format", "tsv", "json"}).output);
  EXPECT_THAT(lines, testing::IsSupersetOf({"cast\tjson\t\t\tarray\tstring\t\thost",
                                            "cast\tjson\t\t\tdictionary\tstring\t\thost",
                                            "cast\tjson\t\t\tosxvalue\tstring\t\thost"}));
}

}  // namespace
}  // namespace gatotu::tests
