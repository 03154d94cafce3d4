#include "inspectors/activedirectory/directory/simple_xml_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/directory/xml_events.h"

namespace {

using Lines = std::vector<std::string>;
using namespace std::string_literals;

struct Row {
  char const* name;
  std::string text;
  Lines events;
};

// However the text is cut into pieces.
void ExpectEvents(std::vector<Row> const& rows) {
  for (Row const& row : rows) {
    for (std::size_t const piece : {row.text.size(), std::size_t{1}, std::size_t{3}}) {
      EXPECT_EQ(EventsOf(row.text, piece), row.events) << row.name << ", pieces of " << piece;
    }
  }
}

TEST(SimpleXmlParser, ReportsTagsAndText) {
  ExpectEvents({
      {"elements", "<a><b>x</b></a>", {"+a", "+b", "'x'", "-b", "-a"}},
      {"white space is text", "<a>\n <b>", {"+a", "'\n '", "+b"}},
      {"text before any tag", "x<a>", {"'x'", "+a"}},
      {"text after the last tag", "<a>x</a>y", {"+a", "'x'", "-a"}},
      {"cut inside a tag", "<a>x</a", {"+a", "'x'"}},
      {"nothing", "<>", {"+"}},
      {"end of nothing", "</>", {"-"}},
      {"end without a start", "</a>", {"-a"}},
      {"self-closing", "<Groups/>", {"-Groups"}},
      {"slash inside a name", "<a/b>", {"-ab"}},
      {"end with a blank", "</a >", {"-a "}},
      {"blanks before the name", "<  a>", {"+a"}},
      {"line break in a name", "<a\nb>", {"+a\nb"}},
      {"dash in a name", "<a-b>x</a-b>", {"+ab", "'x'", "-a-b"}},
      {"two dashes in a name", "<a-b-c>x--><d>", {"+d"}},
      {"tag inside a tag", "<a<b>", {"+a<b"}},
      {"any byte", "<\xFF>\x80\0</\xFF>"s, {"+\xFF", "'\x80\0'"s, "-\xFF"}},
  });
}

TEST(SimpleXmlParser, DecodesReferences) {
  ExpectEvents({
      {"named", "&lt;&gt;&amp;&quot;<", {"'<'", "'>'", "'&'", "'\"'"}},
      {"inside text", "<a>a&lt;b</a>", {"+a", "'a'", "'<'", "'b'", "-a"}},
      {"hexadecimal", "&#x41;&#x6a;&#x6A;&#x00042;", {"'A'", "'j'", "'j'", "'B'"}},
      {"highest", "&#xff;", {"'\xFF'"}},
      {"too high", "&#x100;", {"'&#x100;'"}},
      {"beyond any number", "&#x100000000000000041;", {"'&#x100000000000000041;'"}},
      {"up to what is no digit", "&#x41g5;", {"'A'"}},
      {"no digit", "&#x;", {"'\0'"s}},
      {"capital x", "&#X41;", {"'&#X41;'"}},
      {"decimal", "&#65;", {"'&#65;'"}},
      {"unknown", "&apos;&LT;&;", {"'&apos;'", "'&LT;'", "'&;'"}},
      {"swallows up to the semicolon", "&a <b>&c;<d>", {"'&a <b>&c;'", "+d"}},
      {"never ends", "x&lt<a></a>", {"'x'"}},
  });
}

TEST(SimpleXmlParser, ReadsAttributes) {
  ExpectEvents({
      {"either quote", "<a x='1' y=\"2\"><b>", {"+a x=1 y=2", "+b"}},
      {"other quote inside", "<a x='\"' y=\"'\">", {"+a x=\" y='"}},
      {"nothing between them", "<a x='1'y='2'>", {"+a x=1 y=2"}},
      {"fewer than before", "<a x='1' y='2'><b z='3'>", {"+a x=1 y=2", "+b z=3"}},
      {"empty value", "<a x=''>", {"+a x="}},
      {"no name", "<a =''=''>", {"+a =''="}},
      {"references", "<a x='1&lt;&#65;&#x41;&amp;2'>", {"+a x=1<&#65;A&2"}},
      {"tags in a value", "<a x='<b>/'>", {"+a x=<b>/"}},
      {"before the quote", "<a x=>1 '2'>", {"+a x=2"}},
      {"name with blanks", "<a x y = '1'>", {"+a x y =1"}},
      {"blank before the slash", "<a /><b x='1'>", {"+a /><b x=1"}},
      {"slash after a value", "<a x='1'/><b y='2'>", {"+a x=1 /><b y=2"}},
      {"left open", "<a x='1>", {}},
      {"instruction", "<?xml version=\"1.0\"?><a>", {"?xml version=1.0", "+a"}},
      {"bare instruction", "<?go?>", {"?go?"}},
  });
}

TEST(SimpleXmlParser, PassesOverComments) {
  ExpectEvents({
      {"comment", "<a>x<!-- note -->y</a>", {"+a", "'x'", "'y'", "-a"}},
      {"tags inside", "<!--<a>&lt;--><b>", {"+b"}},
      {"dashes inside", "<!--a-b--c->d--><e>", {"+e"}},
      {"many dashes", "<!----------><e>", {"+e"}},
      {"empty", "<!----><e>", {"+e"}},
      {"closed too early", "<!--><e>--><f>", {"+f"}},
      {"never closed", "<!-- <a>", {}},
      {"declaration", "<!DOCTYPE a><b x='1'>", {"+!DOCTYPE a><b x=1"}},
  });
}

TEST(SimpleXmlParser, TakesCDataAsItIs) {
  ExpectEvents({
      {"section", "<a><![CDATA[x<y&lt;]]></a>", {"+a", "'x<y&lt;'", "-a"}},
      {"beside text", "x<![CDATA[y]]>z<a>", {"'x'", "'y'", "'z'", "+a"}},
      {"empty", "<![CDATA[]]><a>", {"+a"}},
      {"brackets", "<![CDATA[]]]]><![CDATA[a]>]]]>]]><b>", {"']]'", "'a]>]'", "']]>'", "+b"}},
      {"drops NUL", "<![CDATA[a\0b]]><b>"s, {"'ab'", "+b"}},
      {"later in a name", "<a![CDATA[x]]>", {"+a![CDATA[x]]"}},
      {"in an end tag", "</![CDATA[x>", {"-![CDATA[x"}},
      {"never closed", "<![CDATA[x]] ></a>", {}},
  });
}

class Own : public SimpleXMLParserPL {
 public:
  void StartElement(std::string const& name, std::vector<XMLAttribute*> const&) override {
    if (name == "stop") throw std::runtime_error(name);
    names += name;
  }
  std::string names;
};

TEST(SimpleXmlParser, IsItsOwnHandlerAndLetsExceptionsPass) {
  Own parser;
  parser.Parse("<a><b><c>", 6);
  EXPECT_EQ(parser.names, "ab");
  EXPECT_THROW(parser.Parse("<stop><d>"), std::runtime_error);
  EXPECT_EQ(parser.names, "ab");
}

}  // namespace
