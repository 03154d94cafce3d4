#include "frameworks/CoreFoundation/xml_property_list_reader.h"

#include <algorithm>
#include <vector>

#include "frameworks/CoreFoundation/property_list_builder.h"
#include "frameworks/CoreFoundation/xml_property_list_values.h"
#include "frameworks/CoreFoundation/xml_scanner.h"

namespace {

enum class Element {
  kUnknown,
  kArray,
  kData,
  kDate,
  kDictionary,
  kFalse,
  kInteger,
  kKey,
  kPropertyList,
  kReal,
  kString,
  kTrue,
};

// A name of at most seven bytes and its length as one word, which no other such name has.
constexpr UInt64 WordOf(std::string_view name) {
  UInt64 word = name.size();
  for (char const c : name) word = word << 8 | static_cast<UInt8>(c);
  return word;
}

Element FindElement(std::string_view name) {
  if (name.size() > 7) return Element::kUnknown;
  switch (WordOf(name)) {
    case WordOf("array"):
      return Element::kArray;
    case WordOf("data"):
      return Element::kData;
    case WordOf("date"):
      return Element::kDate;
    case WordOf("dict"):
      return Element::kDictionary;
    case WordOf("false"):
      return Element::kFalse;
    case WordOf("integer"):
      return Element::kInteger;
    case WordOf("key"):
      return Element::kKey;
    case WordOf("plist"):
      return Element::kPropertyList;
    case WordOf("real"):
      return Element::kReal;
    case WordOf("string"):
      return Element::kString;
    case WordOf("true"):
      return Element::kTrue;
    default:
      return Element::kUnknown;
  }
}

// Reads one document. Each function answers whether it went well; the first failure is kept by the
// scanner, with its position.
class Reader {
 public:
  Reader(std::string_view text, CFOptionFlags options)
      : scanner_(text), builder_(options, text.size()) {}

  CFPropertyListRef ReadDocument(PropertyListError& error) {
    if (scanner_.SkipProlog() && ReadRoot() && scanner_.SkipToEnd()) return builder_.TakeRoot();
    error.position = scanner_.failure_offset();
    error.message = scanner_.failure();
    return nullptr;
  }

 private:
  struct Container {
    Element element;
    std::size_t first;  // of its values among those of the builder
  };

  bool ReadRoot() {
    XmlTag tag;
    if (!scanner_.TakeTag(tag)) return false;
    bool const has_wrapper = FindElement(tag.name) == Element::kPropertyList;
    if (has_wrapper) {
      if (tag.is_empty) return scanner_.Fail("Empty <plist>");
      if (!scanner_.SkipSpaceAndComments() || !scanner_.TakeTag(tag)) return false;
      if (tag.is_closing) return scanner_.Fail("Empty <plist>");
    }
    if (!ReadElement(tag)) return false;
    while (!open_.empty()) {
      if (!scanner_.SkipSpaceAndComments() || !scanner_.TakeTag(tag)) return false;
      if (!(tag.is_closing ? CloseContainer(tag) : ReadElement(tag))) return false;
    }
    if (!has_wrapper) return true;
    if (!scanner_.SkipSpaceAndComments() || !scanner_.TakeTag(tag)) return false;
    if (tag.is_closing && tag.name == "plist") return true;
    return scanner_.Fail("More than one value in <plist>");
  }

  bool ReadElement(XmlTag const& tag) {
    if (tag.is_closing) return scanner_.Fail("Closing tag without its element");
    Element const element = FindElement(tag.name);
    bool const needs_key = !open_.empty() && open_.back().element == Element::kDictionary &&
                           (builder_.count() - open_.back().first) % 2 == 0;
    if (needs_key != (element == Element::kKey)) {
      return scanner_.Fail(needs_key ? "Value without key in <dict>" : "Misplaced <key>");
    }
    switch (element) {
      case Element::kArray:
      case Element::kDictionary:
        return OpenContainer(element, tag);
      case Element::kKey:
      case Element::kString:
        return ReadString(tag);
      case Element::kTrue:
      case Element::kFalse:
        builder_.Add(CFRetain(element == Element::kTrue ? kCFBooleanTrue : kCFBooleanFalse));
        return tag.is_empty || (scanner_.SkipSpaceAndComments() && scanner_.TakeClosing(tag.name));
      case Element::kInteger:
        return ReadInteger(tag);
      case Element::kReal:
        return ReadReal(tag);
      case Element::kDate:
        return ReadDate(tag);
      case Element::kData:
        return ReadData(tag);
      case Element::kPropertyList:
        return scanner_.Fail("<plist> inside <plist>");
      case Element::kUnknown:
        break;
    }
    return scanner_.Fail("Unknown element");
  }

  bool OpenContainer(Element element, XmlTag const& tag) {
    if (open_.size() == kPropertyListNesting) return scanner_.Fail("Nested too deeply");
    open_.push_back({element, builder_.count()});
    if (tag.is_empty) MakeContainer();
    return true;
  }

  bool CloseContainer(XmlTag const& tag) {
    auto const [element, first] = open_.back();
    if (FindElement(tag.name) != element) return scanner_.Fail("Closing tag of another element");
    if (element == Element::kDictionary && (builder_.count() - first) % 2 != 0) {
      return scanner_.Fail("Key without value in <dict>");
    }
    MakeContainer();
    return true;
  }

  void MakeContainer() {
    auto const [element, first] = open_.back();
    open_.pop_back();
    if (element == Element::kArray) {
      builder_.MakeArray(first);
    } else {
      builder_.MakeDictionary(first);
    }
  }

  bool ReadString(XmlTag const& tag) {
    if (tag.is_empty) {
      builder_.AddAscii({});
      return true;
    }
    std::string_view ascii;
    if (scanner_.TakePlainText(ascii)) {
      builder_.AddAscii(ascii);
      return scanner_.TakeClosing(tag.name);
    }
    CFStringRef const string = scanner_.TakeString(builder_.blocks());
    if (string == nullptr) return false;
    builder_.Add(string);
    return scanner_.TakeClosing(tag.name);
  }

  // The content of an element that holds nothing but characters of its own form.
  std::string_view Content(XmlTag const& tag) {
    return tag.is_empty ? std::string_view() : scanner_.TakeRaw();
  }
  bool Close(XmlTag const& tag) { return tag.is_empty || scanner_.TakeClosing(tag.name); }

  bool ReadInteger(XmlTag const& tag) {
    auto const integer = ReadXmlInteger(Content(tag));
    if (!integer) return scanner_.Fail("Malformed or too large <integer>");
    builder_.AddInteger(integer->magnitude, integer->is_negative);
    return Close(tag);
  }

  bool ReadReal(XmlTag const& tag) {
    auto const real = ReadXmlReal(Content(tag));
    if (!real) return scanner_.Fail("Malformed <real>");
    builder_.AddReal(*real);
    return Close(tag);
  }

  bool ReadDate(XmlTag const& tag) {
    auto const date = ReadXmlDate(Content(tag));
    if (!date) return scanner_.Fail("Malformed <date>");
    builder_.AddDate(*date);
    return Close(tag);
  }

  bool ReadData(XmlTag const& tag) {
    if (!ReadBase64(Content(tag), bytes_)) return scanner_.Fail("Malformed <data>");
    builder_.AddData(bytes_);
    // What one large piece took is not held while the rest is read.
    if (bytes_.capacity() > 65'536) std::vector<UInt8>().swap(bytes_);
    return Close(tag);
  }

  XmlScanner scanner_;
  PropertyListBuilder builder_;
  std::vector<Container> open_;
  std::vector<UInt8> bytes_;
};

}  // namespace

bool LooksLikeXml(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  if (!text.starts_with('<')) return false;
  std::size_t const end = text.find_first_not_of("0123456789abcdefABCDEF \t\r\n", 1);
  return end == text.npos || text[end] != '>';
}

CFPropertyListRef ReadXmlPropertyList(std::string_view text, CFOptionFlags options,
                                      PropertyListError& error) {
  return Reader(text, options).ReadDocument(error);
}
