#include "inspectors/activedirectory/directory/simple_xml_parser.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "portable/ascii.h"

namespace {

using State = SimpleXMLParserPL::State;

constexpr std::size_t kStates = 11;
using ByteFlags = std::array<bool, 256>;

// The bytes that a state does no more with than collecting them: all but the ones listed.
constexpr ByteFlags AllBut(std::string_view acted_on) {
  ByteFlags flags = {};
  flags.fill(true);
  for (char const byte : acted_on) flags[static_cast<unsigned char>(byte)] = false;
  return flags;
}

constexpr ByteFlags kNone = {};
constexpr std::array<ByteFlags, kStates> kMerelyCollected = {
    AllBut("<&"),     // Text
    AllBut(";"),      // TextEntity
    AllBut(" />-["),  // TagName; "[" may open a CDATA section
    AllBut(">"),      // EndTagName
    kNone,            // Attributes
    AllBut("="),      // AttributeName
    kNone,            // BeforeValue
    AllBut("\"'&"),   // AttributeValue
    AllBut(";"),      // ValueEntity
    kNone,            // Comment
    kNone,            // CData
};

// Numbers from 256 on are all alike to the caller.
unsigned HexNumberUpTo256(std::string_view digits) {
  unsigned number = 0;
  for (char const digit : digits) {
    auto const byte = static_cast<unsigned char>(digit);
    if (!Ascii::HexDigits().Contains(byte) || number >= 256) break;
    number = number * 16 + Ascii::HexDigitValue(byte);
  }
  return number;
}

}  // namespace

void SimpleXMLParserPL::Feed(char const* at, char const* end) {
  while ((at = CollectRun(at, end)) != end) {
    current_byte_ = *at++;
    ActOnByte();
  }
}

char const* SimpleXMLParserPL::CollectRun(char const* at, char const* end) {
  ByteFlags const& collected = kMerelyCollected[static_cast<std::size_t>(state_)];
  char const* const stop = std::find_if_not(
      at, end, [&](char byte) { return collected[static_cast<unsigned char>(byte)]; });
  if (stop != at) Collected().append(at, stop);
  return stop;
}

std::string& SimpleXMLParserPL::Collected() {
  switch (state_) {
    case State::TextEntity:
    case State::ValueEntity:
      return entity_;
    case State::TagName:
    case State::EndTagName:
      return element_name_;
    case State::AttributeName:
      return *attribute_name_;
    case State::AttributeValue:
      return *attribute_value_;
    default:
      return text_;
  }
}

// Reached with a byte that the state does not merely collect.
void SimpleXMLParserPL::ActOnByte() {
  switch (state_) {
    case State::Text:
      return TransitionState(current_byte_ == '<' ? State::TagName : State::TextEntity);
    case State::TextEntity:
    case State::EndTagName:
      return TransitionState(State::Text);
    case State::TagName:
      return InTagName();
    case State::Attributes:
      return InAttributes();
    case State::AttributeName:
      return TransitionState(State::BeforeValue);
    case State::BeforeValue:
      if (current_byte_ != '"' && current_byte_ != '\'') return;
      quote_ = current_byte_;
      return TransitionState(State::AttributeValue);
    case State::AttributeValue:
      return InAttributeValue();
    case State::ValueEntity:
      return TransitionState(State::AttributeValue);
    case State::Comment:
      return InComment();
    case State::CData:
      return InCData();
  }
}

void SimpleXMLParserPL::InTagName() {
  switch (current_byte_) {
    case ' ':
      if (!element_name_.empty()) TransitionState(State::Attributes);
      return;
    case '/':
      return TransitionState(State::EndTagName);
    case '>':
      return TransitionState(State::Text);
    case '-':
      if (++dash_count_ > 1) TransitionState(State::Comment);
      return;
  }
  element_name_ += current_byte_;
  if (element_name_ != "![CDATA[") return;
  element_name_.clear();
  previous_byte_ = byte_before_that_ = 0;
  TransitionState(State::CData);
}

void SimpleXMLParserPL::InAttributes() {
  if (current_byte_ == ' ' || current_byte_ == '?') return;
  TransitionState(current_byte_ == '>' ? State::Text : State::AttributeName);
}

void SimpleXMLParserPL::InAttributeValue() {
  if (current_byte_ == quote_) return TransitionState(State::Attributes);
  if (current_byte_ == '&') return TransitionState(State::ValueEntity);
  *attribute_value_ += current_byte_;
}

void SimpleXMLParserPL::InComment() {
  if (current_byte_ == '-') {
    // Beyond two it makes no difference, and a long row of dashes must not overflow.
    dash_count_ = std::min(dash_count_ + 1, 2);
  } else if (current_byte_ == '>' && dash_count_ > 1) {
    TransitionState(State::Text);
  } else {
    dash_count_ = 0;
  }
}

void SimpleXMLParserPL::InCData() {
  if (current_byte_ == '>' && previous_byte_ == ']' && byte_before_that_ == ']') {
    return TransitionState(State::Text);
  }
  if (byte_before_that_ != 0) text_ += byte_before_that_;
  byte_before_that_ = previous_byte_;
  previous_byte_ = current_byte_;
}

void SimpleXMLParserPL::TransitionState(State next) {
  Leave(next);
  Enter(next);
  state_ = next;
}

void SimpleXMLParserPL::Leave(State next) {
  switch (state_) {
    case State::Text:
    case State::CData:
      return ReportText();
    case State::TextEntity:
      entity_ += ';';
      return handler_->Characters(DecodeEscapeString());
    case State::TagName:
    case State::Attributes:
      if (next == State::Text) ReportTag();
      return;
    case State::EndTagName:
      if (next == State::Text) handler_->EndElement(element_name_);
      return;
    case State::AttributeValue:
      if (next != State::ValueEntity) ++attribute_count_;
      return;
    case State::ValueEntity:
      entity_ += ';';
      *attribute_value_ += DecodeEscapeString();
      return;
    case State::AttributeName:
    case State::BeforeValue:
    case State::Comment:
      return;
  }
}

void SimpleXMLParserPL::Enter(State next) {
  switch (next) {
    case State::TextEntity:
    case State::ValueEntity:
      entity_ = "&";
      return;
    case State::TagName:
      dash_count_ = 0;
      element_name_.clear();
      attribute_count_ = 0;
      return;
    case State::Attributes:
      return StartAttribute();
    case State::AttributeName:
      *attribute_name_ += current_byte_;
      return;
    case State::Comment:
      dash_count_ = 0;
      return;
    case State::Text:
    case State::EndTagName:
    case State::BeforeValue:
    case State::AttributeValue:
    case State::CData:
      return;
  }
}

void SimpleXMLParserPL::ReportText() {
  if (text_.empty()) return;
  handler_->Characters(text_);
  text_.clear();
}

void SimpleXMLParserPL::ReportTag() {
  attribute_pointers_.clear();
  for (std::uint32_t i = 0; i < attribute_count_; ++i) {
    attribute_pointers_.push_back(&attribute_store_[i]);
  }
  if (element_name_.starts_with('?')) {
    handler_->DoProcessingInstructionElement(element_name_, attribute_pointers_);
  } else {
    handler_->StartElement(element_name_, attribute_pointers_);
  }
}

void SimpleXMLParserPL::StartAttribute() {
  if (attribute_store_.size() <= attribute_count_) attribute_store_.emplace_back();
  XMLAttribute& attribute = attribute_store_[attribute_count_];
  attribute_name_ = &attribute.first;
  attribute_value_ = &attribute.second;
  attribute_name_->clear();
  attribute_value_->clear();
}

std::string const& SimpleXMLParserPL::DecodeEscapeString() {
  static Pair<std::string, std::string> const kNamed[] = {
      {"&lt;", "<"}, {"&gt;", ">"}, {"&amp;", "&"}, {"&quot;", "\""}};
  for (auto const& [reference, meaning] : kNamed) {
    if (entity_ == reference) return meaning;
  }
  if (!entity_.starts_with("&#x")) return entity_;
  unsigned const number = HexNumberUpTo256(std::string_view(entity_).substr(3));
  if (number < 256) entity_.assign(1, static_cast<char>(number));
  return entity_;
}
