// A push parser for the XML that directory records are kept in. It knows elements, attributes,
// text, four named entities, hexadecimal character references, comments, CDATA sections and
// processing instructions; it neither validates nor nests, and reports no error: what is malformed
// yields whatever the states make of it. What follows the last tag is never reported.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "inspectors/activedirectory/directory/xml_handler.h"

// All state lives between calls, so a document may be fed in pieces of any size. Never throws by
// itself; what a callback throws passes through, and the parser is of no use afterwards.
class SimpleXMLParserPL : public XMLHandler {
 public:
  enum class State {
    Text = 0,
    TextEntity = 1,
    TagName = 2,
    EndTagName = 3,
    Attributes = 4,
    AttributeName = 5,
    BeforeValue = 6,
    AttributeValue = 7,
    ValueEntity = 8,
    Comment = 9,
    CData = 10,
  };

  // Its own handler, for classes that override the callbacks.
  SimpleXMLParserPL() : handler_(this) {}
  // `handler` outlives the parser.
  explicit SimpleXMLParserPL(XMLHandler& handler) : handler_(&handler) {}
  SimpleXMLParserPL(SimpleXMLParserPL const&) = delete;
  SimpleXMLParserPL& operator=(SimpleXMLParserPL const&) = delete;

  void Parse(char const* bytes, std::uint32_t length) { Feed(bytes, bytes + length); }
  void Parse(std::string const& text) { Feed(text.data(), text.data() + text.size()); }

  // Does what leaving the current state asks for, then what entering the next one does.
  void TransitionState(State next);
  // What the reference in the entity buffer, "&" and ";" included, stands for. One that is unknown,
  // decimal, or 256 and above stands for itself.
  std::string const& DecodeEscapeString();

  void StartElement(std::string const&, std::vector<XMLAttribute*> const&) override {}
  void EndElement(std::string const&) override {}
  void Characters(std::string const&) override {}

 private:
  void Feed(char const* at, char const* end);
  char const* CollectRun(char const* at, char const* end);
  std::string& Collected();
  void ActOnByte();

  void InTagName();
  void InAttributes();
  void InAttributeValue();
  void InComment();
  void InCData();

  void Leave(State next);
  void Enter(State next);
  void ReportText();
  void ReportTag();
  void StartAttribute();

  State state_ = State::Text;
  char current_byte_ = 0;
  // Of a CDATA section, whose text lags two bytes behind so that the closing "]]" stays out of it.
  char previous_byte_ = 0;
  char byte_before_that_ = 0;
  char quote_ = 0;
  std::string text_;
  std::string entity_;
  std::string element_name_;
  std::vector<XMLAttribute*> attribute_pointers_;
  // Reused from tag to tag and never smaller; a deque, since the pointers lead into it.
  std::deque<XMLAttribute> attribute_store_;
  std::string* attribute_name_ = nullptr;
  std::string* attribute_value_ = nullptr;
  std::uint32_t attribute_count_ = 0;
  std::int32_t dash_count_ = 0;
  XMLHandler* handler_;
};
