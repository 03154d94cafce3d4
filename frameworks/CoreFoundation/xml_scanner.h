// The lexical side of XML as far as property lists need it: tags, text with its references and
// sections, and what lies between. Works on a view of UTF-8 text and copies nothing but strings.
#pragma once

#include <CoreFoundation/CFString.h>

#include <cstddef>
#include <string_view>

#include "frameworks/CoreFoundation/object_blocks.h"

struct XmlTag {
  std::string_view name;
  bool is_closing = false;  // </name>
  bool is_empty = false;    // <name/>
};

class XmlScanner {
 public:
  explicit XmlScanner(std::string_view text)
      : begin_(text.data()), at_(begin_), end_(begin_ + text.size()) {}

  // Each answers whether it went well. After a failure nothing more may be asked but what failed.

  // The declaration, comments, processing instructions and the document type.
  bool SkipProlog();
  bool SkipSpaceAndComments() {
    SkipSpace();
    return !IsAtDeclaration() || SkipDeclarations();
  }
  // Only white space, comments and processing instructions are left.
  bool SkipToEnd();

  // A tag, at "<". Attributes are skipped.
  bool TakeTag(XmlTag& tag);
  bool TakeClosing(std::string_view name);

  // Everything up to the next "<", as it stands.
  std::string_view TakeRaw();
  // The same when it is ASCII without references and a closing tag follows. Otherwise false, and
  // nothing is taken: then `TakeString` is to be asked.
  bool TakePlainText(std::string_view& text);
  // Text up to the next tag, without the comments in it, as a string with one reference. Null for
  // malformed UTF-8 and for references that are not known.
  CFStringRef TakeString(ObjectBlocks& blocks);

  // Keeps the first failure, with the place that was reached. Always false.
  bool Fail(char const* message);
  char const* failure() const { return failure_; }
  std::size_t failure_offset() const { return failure_offset_; }

 private:
  std::string_view Rest() const { return {at_, static_cast<std::size_t>(end_ - at_)}; }
  bool StartsWith(std::string_view text) const { return Rest().starts_with(text); }
  static constexpr bool IsSpace(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }
  void SkipSpace() {
    while (at_ != end_ && IsSpace(*at_)) ++at_;
  }
  // At "<!" or "<?", where neither a tag begins nor text.
  bool IsAtDeclaration() const {
    return end_ - at_ >= 2 && at_[0] == '<' && (at_[1] == '!' || at_[1] == '?');
  }
  // Comments and processing instructions, and the space behind each.
  bool SkipDeclarations();
  // Past the next `mark`.
  bool SkipPast(std::string_view mark, char const* failure);
  bool SkipComment() { return SkipPast("-->", "Unterminated comment"); }
  bool SkipInstruction() { return SkipPast("?>", "Unterminated processing instruction"); }
  bool SkipDocumentType();
  bool SkipQuoted();

  // Gives each character of the text to `sink`, up to the next tag.
  template <typename Sink>
  bool WalkText(Sink&& sink);
  bool TakeReference(UInt32& character);
  bool TakeCharacterNumber(std::string_view digits, UInt32& character) const;

  char const* begin_;
  char const* at_;
  char const* end_;
  char const* failure_ = nullptr;
  std::size_t failure_offset_ = 0;
};
