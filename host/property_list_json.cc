#include "host/property_list_json.h"

#include "host/scalar_json.h"

namespace gatotu::host {
namespace {

// How many values are written at a time.
constexpr int kValuesAtATime = 4096;

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
  if (container.next == container.count) {
    text_ += container.is_dictionary ? '}' : ']';
    items_.resize(container.first);
    open_.pop_back();
    return;
  }
  if (container.next > 0) text_ += ',';
  std::size_t place = container.first + container.next++;
  if (container.is_dictionary) {
    AppendKeyJson(items_[place], text_, most_);
    text_ += ':';
    place += container.count;
  }
  Write(items_[place]);
}

void PropertyListJson::Write(CFTypeRef object) {
  CFTypeID const type = CFGetTypeID(object);
  if (type == CFDictionaryGetTypeID()) {
    OpenDictionary(static_cast<CFDictionaryRef>(object));
  } else if (type == CFArrayGetTypeID()) {
    OpenArray(static_cast<CFArrayRef>(object));
  } else {
    AppendScalarJson(object, text_, most_);
  }
}

void PropertyListJson::OpenArray(CFArrayRef array) {
  text_ += '[';
  std::size_t const first = items_.size();
  CFIndex const count = CFArrayGetCount(array);
  items_.resize(first + static_cast<std::size_t>(count));
  CFArrayGetValues(array, CFRangeMake(0, count), items_.data() + first);
  open_.push_back({false, first, static_cast<std::size_t>(count), 0});
}

void PropertyListJson::OpenDictionary(CFDictionaryRef dictionary) {
  text_ += '{';
  std::size_t const first = items_.size();
  auto const count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
  items_.resize(first + 2 * count);
  CFDictionaryGetKeysAndValues(dictionary, items_.data() + first, items_.data() + first + count);
  open_.push_back({true, first, count, 0});
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
