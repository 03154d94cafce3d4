#include "frameworks/CoreFoundation/recorded_facts.h"

#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <type_traits>
#include <vector>

#include "frameworks/CoreFoundation/file_system_text.h"
#include "frameworks/CoreFoundation/number_object.h"

namespace {

using machine::Record;
using machine::RecordArray;
using machine::RecordBytes;
using machine::RecordDate;
using machine::RecordDictionary;

struct Releaser {
  void operator()(void const* object) const { CFRelease(object); }
};
template <typename Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Releaser>;
using OwnedObject = std::unique_ptr<void const, Releaser>;

// Recursive; the readers bound the depth.
class RecordMaker {
 public:
  explicit RecordMaker(std::size_t list_bytes)
      : most_values_(std::min(kMostValues, kFew + 4 * list_bytes)),
        most_bytes_(kFew + 8 * list_bytes) {}

  // False when the list grows too large.
  bool Make(CFTypeRef object, Record& record);

 private:
  static constexpr std::size_t kMostValues = std::size_t{8} << 20, kFew = 4096;

  bool Spend(std::size_t bytes) {
    if (values_ == most_values_ || bytes > most_bytes_) return false;
    ++values_;
    most_bytes_ -= bytes;
    return true;
  }
  bool MakeText(CFStringRef string, std::string& text) {
    text = file_system_text::BytesOf(string);
    return Spend(text.size());
  }
  bool MakeArray(CFArrayRef array, Record& record);
  bool MakeDictionary(CFDictionaryRef dictionary, Record& record);
  bool MakeBytes(CFDataRef data, Record& record);

  std::size_t const most_values_;
  std::size_t most_bytes_, values_ = 0;
};

Record NumberRecord(__CFNumber const& number) {
  if (number.is_real()) return number.as_real();
  if (number.is_unsigned()) return std::uint64_t{number.as_unsigned()};
  return std::int64_t{number.as_signed()};
}

// What no clock of ours can show stands at the end of its range.
Record DateRecord(CFAbsoluteTime time) {
  constexpr double kFarthest = 9.2e18;
  double const microseconds = (time + kCFAbsoluteTimeIntervalSince1970) * 1e6;
  double const clamped =
      std::isnan(microseconds) ? 0 : std::clamp(microseconds, -kFarthest, kFarthest);
  return RecordDate{static_cast<std::int64_t>(std::llround(clamped))};
}

bool RecordMaker::Make(CFTypeRef object, Record& record) {
  CFTypeID const type = CFGetTypeID(object);
  if (type == CFArrayGetTypeID()) return MakeArray(static_cast<CFArrayRef>(object), record);
  if (type == CFDictionaryGetTypeID()) {
    return MakeDictionary(static_cast<CFDictionaryRef>(object), record);
  }
  if (type == CFDataGetTypeID()) return MakeBytes(static_cast<CFDataRef>(object), record);
  if (type == CFStringGetTypeID()) {
    std::string text;
    if (!MakeText(static_cast<CFStringRef>(object), text)) return false;
    record = std::move(text);
    return true;
  }
  if (type == CFBooleanGetTypeID()) {
    record = CFBooleanGetValue(static_cast<CFBooleanRef>(object)) != 0;
  } else if (type == CFNumberGetTypeID()) {
    record = NumberRecord(*static_cast<CFNumberRef>(object));
  } else if (type == CFDateGetTypeID()) {
    record = DateRecord(CFDateGetAbsoluteTime(static_cast<CFDateRef>(object)));
  }
  return Spend(0);
}

bool RecordMaker::MakeArray(CFArrayRef array, Record& record) {
  auto const count = static_cast<std::size_t>(CFArrayGetCount(array));
  RecordArray items;
  if (!Spend(0) || count > most_values_ - values_) return false;
  items.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    items.emplace_back(false);
    if (!Make(CFArrayGetValueAtIndex(array, static_cast<CFIndex>(i)), items.back())) return false;
  }
  record = std::move(items);
  return true;
}

bool RecordMaker::MakeDictionary(CFDictionaryRef dictionary, Record& record) {
  auto const count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
  std::vector<RecordDictionary::Entry> entries;
  if (!Spend(0) || count > most_values_ - values_) return false;
  entries.reserve(count);
  std::vector<void const*> keys(count), values(count);
  CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
  for (std::size_t i = 0; i < count; ++i) {
    auto& [key, value] = entries.emplace_back(std::string(), false);
    if (!MakeText(static_cast<CFStringRef>(keys[i]), key) || !Make(values[i], value)) return false;
  }
  record = RecordDictionary(std::move(entries));
  return true;
}

bool RecordMaker::MakeBytes(CFDataRef data, Record& record) {
  auto const size = static_cast<std::size_t>(CFDataGetLength(data));
  if (!Spend(size)) return false;
  record = RecordBytes{std::string(reinterpret_cast<char const*>(CFDataGetBytePtr(data)), size)};
  return true;
}

CFTypeRef MakeObject(Record const& record);

struct ObjectMaker {
  CFTypeRef operator()(bool value) const {
    return CFRetain(value ? kCFBooleanTrue : kCFBooleanFalse);
  }
  CFTypeRef operator()(std::int64_t value) const { return __CFNumber::MakeSigned(value); }
  CFTypeRef operator()(std::uint64_t value) const { return __CFNumber::MakeUnsigned(value); }
  CFTypeRef operator()(double value) const { return __CFNumber::MakeReal(value); }
  CFTypeRef operator()(std::string const& text) const {
    return file_system_text::CreateString(text);
  }
  CFTypeRef operator()(RecordBytes const& bytes) const {
    return CFDataCreate(nullptr, reinterpret_cast<UInt8 const*>(bytes.content.data()),
                        static_cast<CFIndex>(bytes.content.size()));
  }
  CFTypeRef operator()(RecordDate date) const {
    double const seconds = static_cast<double>(date.microseconds_since_1970) / 1e6;
    return CFDateCreate(nullptr, seconds - kCFAbsoluteTimeIntervalSince1970);
  }
  CFTypeRef operator()(RecordArray const& items) const {
    CFMutableArrayRef const array = CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks);
    for (Record const& item : items) {
      OwnedObject const object(MakeObject(item));
      CFArrayAppendValue(array, object.get());
    }
    return array;
  }
  CFTypeRef operator()(RecordDictionary const& entries) const {
    return CreateRecordedDictionary(entries);
  }
};

CFTypeRef MakeObject(Record const& record) { return std::visit(ObjectMaker(), record.value()); }

}  // namespace

machine::Fact<Record> ReadRecordedFacts(std::string_view bytes, std::string const& source) {
  using machine::Absence;
  using machine::Outcome;
  Owned<CFDataRef> const data(CFDataCreate(nullptr, reinterpret_cast<UInt8 const*>(bytes.data()),
                                           static_cast<CFIndex>(bytes.size())));
  CFStringRef reason = nullptr;
  OwnedObject const list(
      CFPropertyListCreateFromXMLData(nullptr, data.get(), kCFPropertyListImmutable, &reason));
  Owned<CFStringRef> const owned_reason(reason);
  if (list == nullptr) {
    return Absence{Outcome::kMalformed, source,
                   reason == nullptr ? "not a property list" : file_system_text::BytesOf(reason)};
  }
  Record record;
  if (!RecordMaker(bytes.size()).Make(list.get(), record)) {
    return Absence{Outcome::kMalformed, source, "stands for too many values"};
  }
  return record;
}

machine::Fact<std::string> WriteRecordedFacts(Record const& record) {
  OwnedObject const object(MakeObject(record));
  Owned<CFDataRef> const data(CFPropertyListCreateXMLData(nullptr, object.get()));
  if (data == nullptr) {
    return machine::Absence{machine::Outcome::kMalformed, "property list", "cannot be written"};
  }
  return std::string(reinterpret_cast<char const*>(CFDataGetBytePtr(data.get())),
                     static_cast<std::size_t>(CFDataGetLength(data.get())));
}

CFMutableDictionaryRef CreateRecordedDictionary(RecordDictionary const& entries) {
  CFMutableDictionaryRef const dictionary = CFDictionaryCreateMutable(
      nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
  for (auto const& [key, value] : entries.entries()) {
    OwnedObject const name(file_system_text::CreateString(key)), object(MakeObject(value));
    CFDictionarySetValue(dictionary, name.get(), object.get());
  }
  return dictionary;
}
