#include "frameworks/DirectoryService/answer_buffer.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace directory_service {
namespace {

constexpr std::size_t kData = offsetof(tDataBuffer, fBufferData);

// A buffer is: the content's kind, the count, where the places are, that many texts and their
// places. A record's text is: where its
// kind is, its name and its values, and the kind if the record before has another. A kind is a
// text: the records' type, how many attributes, and as often a name and how many of the values. A
// text is its length and bytes; numbers are 32 bits wide in the processor's order, and places count
// from the content's start.
class Cursor {
 public:
  explicit Cursor(std::string_view rest) : rest_(rest) {}

  UInt32 Number() {
    UInt32 number = 0;
    if (rest_.size() < sizeof number) is_good_ = false;
    if (!is_good_) return 0;
    std::memcpy(&number, rest_.data(), sizeof number);
    rest_.remove_prefix(sizeof number);
    return number;
  }

  std::string_view Text() {
    UInt32 const length = Number();
    if (rest_.size() < length) is_good_ = false;
    if (!is_good_) return {};
    std::string_view const text = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return text;
  }

  // So many texts, as far as there are.
  void Skip(UInt32 count) {
    for (; count > 0 && is_good_; --count) Text();
  }

  std::string_view rest() const { return rest_; }
  bool is_good() const { return is_good_; }

 private:
  std::string_view rest_;
  bool is_good_ = true;
};

PlaceInBuffer PlaceOf(tDataBuffer const& buffer, std::string_view text) {
  return {static_cast<UInt32>(text.data() - ContentOf(buffer).data()),
          static_cast<UInt32>(text.size())};
}

std::optional<std::string_view> TextAt(tDataBuffer const& buffer, PlaceInBuffer place) {
  std::string_view const content = ContentOf(buffer);
  bool const is_inside =
      place.start <= content.size() && place.length <= content.size() - place.start;
  if (!is_inside) return {};
  return content.substr(place.start, place.length);
}

// The text whose length is there.
std::optional<std::string_view> TextFrom(tDataBuffer const& buffer, UInt32 start) {
  std::string_view const content = ContentOf(buffer);
  if (start > content.size()) return {};
  Cursor cursor(content.substr(start));
  std::string_view const text = cursor.Text();
  return cursor.is_good() ? std::optional(text) : std::nullopt;
}

Expected<std::string_view> ItemIn(tDataBuffer const& buffer, Content content, UInt32 index) {
  Cursor cursor(ContentOf(buffer));
  if (cursor.Number() != static_cast<UInt32>(content)) return {{}, eDSInvalidBuffFormat};
  UInt32 const count = cursor.Number(), places = cursor.Number();
  if (cursor.is_good() && (index == 0 || index > count)) return {{}, eDSIndexOutOfRange};
  auto const place = TextAt(buffer, {places, count * UInt32{sizeof(UInt32)}});
  if (!cursor.is_good() || !place) return {{}, eDSCorruptBuffer};
  auto const item = TextFrom(buffer, Cursor(place->substr((index - 1) * sizeof(UInt32))).Number());
  return {item, item ? eDSNoErr : eDSCorruptBuffer};
}

}  // namespace

std::string_view ContentOf(tDataBuffer const& buffer) {
  if (buffer.fBufferLength > buffer.fBufferSize) return {};
  return {reinterpret_cast<char const*>(&buffer) + kData, buffer.fBufferLength};
}

AnswerWriter::AnswerWriter(tDataBuffer& buffer, Content content) : buffer_(buffer) {
  buffer_.fBufferLength = 0;
  PutNumber(static_cast<UInt32>(content));
  PutNumber(0);
  PutNumber(0);
}

UInt32 AnswerWriter::Finish() {
  is_full_ = false;
  UInt32 const counts[] = {static_cast<UInt32>(starts_.size()), buffer_.fBufferLength};
  char* const content = reinterpret_cast<char*>(&buffer_) + kData;
  std::memcpy(content + buffer_.fBufferLength, starts_.data(), starts_.size() * sizeof(UInt32));
  buffer_.fBufferLength += counts[0] * UInt32{sizeof(UInt32)};
  std::memcpy(content + sizeof(UInt32), counts, sizeof counts);
  return counts[0];
}

void AnswerWriter::PutNumber(std::size_t number) {
  auto const value = static_cast<UInt32>(number);
  needed_ += sizeof value;
  std::size_t const left = buffer_.fBufferSize - buffer_.fBufferLength;
  if (left < sizeof value || number > UINT32_MAX) is_full_ = true;
  if (is_full_) return;
  std::memcpy(reinterpret_cast<char*>(&buffer_) + kData + buffer_.fBufferLength, &value,
              sizeof value);
  buffer_.fBufferLength += sizeof value;
}

void AnswerWriter::PutText(std::string_view text) {
  PutNumber(text.size());
  needed_ += text.size();
  if (buffer_.fBufferSize - buffer_.fBufferLength < text.size()) is_full_ = true;
  if (is_full_) return;
  std::memcpy(reinterpret_cast<char*>(&buffer_) + kData + buffer_.fBufferLength, text.data(),
              text.size());
  buffer_.fBufferLength += static_cast<UInt32>(text.size());
}

// Counts what was put since, or takes it back.
bool AnswerWriter::Keep(UInt32 length_before) {
  // Its place is put behind everything at the end.
  std::size_t const places = (starts_.size() + 1) * sizeof(UInt32);
  needed_ += sizeof(UInt32);
  if (buffer_.fBufferSize - buffer_.fBufferLength < places) is_full_ = true;
  if (is_full_) {
    buffer_.fBufferLength = length_before;
    return false;
  }
  starts_.push_back(length_before);
  return true;
}

bool AnswerWriter::Append(std::string_view node_name) {
  UInt32 const before = buffer_.fBufferLength;
  PutText(node_name);
  return Keep(before);
}

// A text within a text: its length is known when it is there.
template <typename Put>
void AnswerWriter::PutNested(Put const& put) {
  UInt32 const start = buffer_.fBufferLength;
  PutNumber(0);
  put();
  if (is_full_) return;
  UInt32 const length = buffer_.fBufferLength - start - UInt32{sizeof(UInt32)};
  std::memcpy(reinterpret_cast<char*>(&buffer_) + kData + start, &length, sizeof length);
}

UInt32 AnswerWriter::PutKind(machine::DirectoryRecordView const& record, bool has_values) {
  UInt32 const start = buffer_.fBufferLength;
  PutNested([&] {
    PutText(record.type);
    PutNumber(record.attributes.size());
    for (auto const& [name, count] : record.attributes) {
      PutText(name);
      PutNumber(has_values ? count : 0);
    }
  });
  return start;
}

bool AnswerWriter::Append(machine::DirectoryRecordView const& record, bool has_values) {
  UInt32 const before = buffer_.fBufferLength;
  Kind kind = kind_;
  PutNested([&] {
    UInt32 const start = buffer_.fBufferLength;
    bool const is_new = kind.start == 0 || kind.attributes != record.attributes.data();
    PutNumber(kind.start);
    PutText(record.name);
    if (has_values) std::ranges::for_each(record.values, [this](auto text) { PutText(text); });
    if (!is_new) return;
    kind = {record.attributes.data(), PutKind(record, has_values)};
    if (is_full_) return;
    std::memcpy(reinterpret_cast<char*>(&buffer_) + kData + start, &kind.start, sizeof kind.start);
  });
  if (!is_full_) kind_ = kind;
  return Keep(before);
}

Expected<std::string_view> NodeNameIn(tDataBuffer const& buffer, UInt32 index) {
  return ItemIn(buffer, Content::kNodeNames, index);
}

Expected<RecordInBuffer> RecordIn(tDataBuffer const& buffer, UInt32 index) {
  Expected<std::string_view> const item = ItemIn(buffer, Content::kRecords, index);
  if (!item.value) return {{}, item.status};
  Cursor cursor(*item.value);
  auto const kind = TextFrom(buffer, cursor.Number());
  RecordInBuffer record;
  record.name = cursor.Text();
  if (!cursor.is_good() || !kind) return {{}, eDSCorruptBuffer};
  record.attributes.values = PlaceOf(buffer, cursor.rest());
  Cursor attributes(*kind);
  record.type = attributes.Text();
  record.attributes.count = attributes.Number();
  if (!attributes.is_good()) return {{}, eDSCorruptBuffer};
  record.attributes.attributes = PlaceOf(buffer, attributes.rest());
  return {record, eDSNoErr};
}

Expected<AttributeInBuffer> AttributeIn(tDataBuffer const& buffer,
                                        AttributesInBuffer const& attributes, UInt32 index) {
  if (index == 0 || index > attributes.count) return {{}, eDSIndexOutOfRange};
  auto const names = TextAt(buffer, attributes.attributes);
  auto const values = TextAt(buffer, attributes.values);
  if (!names || !values) return {{}, eDSCorruptBuffer};
  Cursor name(*names), value(*values);
  for (; index > 1 && name.is_good(); --index) {
    name.Text();
    value.Skip(name.Number());
  }
  AttributeInBuffer attribute;
  attribute.name = name.Text();
  attribute.values.count = name.Number();
  attribute.values.place = PlaceOf(buffer, value.rest());
  for (UInt32 i = 0; i < attribute.values.count && value.is_good(); ++i) {
    auto const size = static_cast<UInt32>(value.Text().size());
    attribute.data_size += size;
    attribute.largest_size = std::max(attribute.largest_size, size);
  }
  if (!name.is_good() || !value.is_good()) return {{}, eDSCorruptBuffer};
  return {attribute, eDSNoErr};
}

Expected<std::string_view> ValueIn(tDataBuffer const& buffer, ValuesInBuffer& values,
                                   UInt32 index) {
  constexpr UInt32 kFar = 16;
  if (index == 0 || index > values.count) return {{}, eDSIndexOutOfRange};
  auto const text = TextAt(buffer, values.place);
  if (!text) return {{}, eDSCorruptBuffer};
  bool const is_behind = index >= values.known_index && values.known_start <= text->size();
  UInt32 const hops = is_behind ? index - values.known_index : index - 1;
  Cursor cursor(text->substr(is_behind ? values.known_start : 0));
  cursor.Skip(hops);
  std::string_view const rest = cursor.rest();
  std::string_view const value = cursor.Text();
  if (!cursor.is_good()) return {{}, eDSCorruptBuffer};
  if (hops > kFar) {
    values.known_index = index;
    values.known_start = static_cast<UInt32>(rest.data() - text->data());
  }
  return {value, eDSNoErr};
}

}  // namespace directory_service
