#include "host/property_list_json.h"

#include <algorithm>

#include "host/scalar_json.h"

namespace gatotu::host {
namespace {

// How many values are written at a time.
constexpr int kValuesAtATime = 4096;

std::vector<CFTypeRef> ItemsOfArray(CFArrayRef array) {
  CFIndex const count = CFArrayGetCount(array);
  std::vector<CFTypeRef> items(static_cast<std::size_t>(count));
  CFArrayGetValues(array, CFRangeMake(0, count), items.data());
  return items;
}

std::vector<CFTypeRef> ItemsOfDictionary(CFDictionaryRef dictionary) {
  auto const count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
  std::vector<CFTypeRef> keys(count), values(count), items;
  CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
  items.reserve(2 * count);
  for (std::size_t i = 0; i < count; ++i) {
    items.push_back(keys[i]);
    items.push_back(values[i]);
  }
  return items;
}

}  // namespace

PropertyListJson::PropertyListJson(CFTypeRef object, std::string& text, std::size_t most)
    : text_(text), most_(most) {
  Write(object);
}

PropertyListJson::State PropertyListJson::Continue() {
  for (int written = 0; written < kValuesAtATime; ++written) {
    // Each container that is open needs a byte more to close.
    if (text_.size() > most_ || open_.size() > most_ - text_.size()) return State::kTooLong;
    if (open_.empty()) return State::kDone;
    WriteNextItem();
  }
  return State::kMore;
}

void PropertyListJson::WriteNextItem() {
  Container& container = open_.back();
  if (container.next == container.items.size()) {
    text_ += container.is_dictionary ? '}' : ']';
    open_.pop_back();
    return;
  }
  if (container.next > 0) text_ += ',';
  CFTypeRef item = container.items[container.next++];
  if (container.is_dictionary) {
    AppendKeyJson(item, text_, most_);
    text_ += ':';
    item = container.items[container.next++];
  }
  Write(item);
}

void PropertyListJson::Write(CFTypeRef object) {
  CFTypeID const type = CFGetTypeID(object);
  bool const is_dictionary = type == CFDictionaryGetTypeID();
  if (is_dictionary || type == CFArrayGetTypeID()) {
    Open(object, is_dictionary);
  } else {
    AppendScalarJson(object, text_, most_);
  }
}

void PropertyListJson::Open(CFTypeRef object, bool is_dictionary) {
  text_ += is_dictionary ? '{' : '[';
  open_.push_back({is_dictionary, 0,
                   is_dictionary ? ItemsOfDictionary(static_cast<CFDictionaryRef>(object))
                                 : ItemsOfArray(static_cast<CFArrayRef>(object))});
}

bool AppendPropertyListJson(CFTypeRef object, std::string& text, std::size_t most) {
  PropertyListJson json(object, text, most);
  for (;;) {
    switch (json.Continue()) {
      case PropertyListJson::State::kMore:
        break;
      case PropertyListJson::State::kDone:
        return true;
      case PropertyListJson::State::kTooLong:
        return false;
    }
  }
}

}  // namespace gatotu::host
