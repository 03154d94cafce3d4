#include "frameworks/DirectoryService/answer_buffer.h"

#include <cstddef>
#include <cstring>

namespace directory_service {
namespace {

constexpr std::size_t kData = offsetof(tDataBuffer, fBufferData);

// A buffer is: the content's kind, the count, and as often a text. A record's text is its name,
// type and number of attributes, and as often a text: name, number of values, values. A text is its
// length and bytes; numbers are 32 bits wide in the processor's order.
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

  // The text at an index; nothing when the texts end before.
  std::string_view TextAt(UInt32 index) {
    for (; index > 1 && is_good_; --index) Text();
    return Text();
  }

  std::string_view rest() const { return rest_; }
  bool is_good() const { return is_good_; }

 private:
  std::string_view rest_;
  bool is_good_ = true;
};

Expected<std::string_view> ItemIn(tDataBuffer const& buffer, Content content, UInt32 index) {
  Cursor cursor(ContentOf(buffer));
  if (cursor.Number() != static_cast<UInt32>(content)) return {{}, eDSInvalidBuffFormat};
  UInt32 const count = cursor.Number();
  if (cursor.is_good() && (index == 0 || index > count)) return {{}, eDSIndexOutOfRange};
  std::string_view const item = cursor.TextAt(index);
  if (!cursor.is_good()) return {{}, eDSCorruptBuffer};
  return {item, eDSNoErr};
}

PlaceInBuffer PlaceOf(tDataBuffer const& buffer, std::string_view text) {
  return {static_cast<UInt32>(text.data() - ContentOf(buffer).data()),
          static_cast<UInt32>(text.size())};
}

}  // namespace

std::string_view ContentOf(tDataBuffer const& buffer) {
  if (buffer.fBufferLength > buffer.fBufferSize) return {};
  return {reinterpret_cast<char const*>(&buffer) + kData, buffer.fBufferLength};
}

std::optional<std::string_view> TextAt(tDataBuffer const& buffer, PlaceInBuffer place) {
  std::string_view const content = ContentOf(buffer);
  bool const is_inside =
      place.start <= content.size() && place.length <= content.size() - place.start;
  if (!is_inside) return {};
  return content.substr(place.start, place.length);
}

AnswerWriter::AnswerWriter(tDataBuffer& buffer, Content content) : buffer_(buffer) {
  buffer_.fBufferLength = 0;
  PutNumber(static_cast<UInt32>(content));
  PutNumber(0);
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
  if (is_full_) {
    buffer_.fBufferLength = length_before;
    return false;
  }
  ++count_;
  std::memcpy(reinterpret_cast<char*>(&buffer_) + kData + sizeof(UInt32), &count_, sizeof count_);
  return true;
}

bool AnswerWriter::Append(std::string_view node_name) {
  UInt32 const before = buffer_.fBufferLength;
  PutText(node_name);
  return Keep(before);
}

bool AnswerWriter::Append(machine::DirectoryRecord const& record, bool has_values) {
  UInt32 const before = buffer_.fBufferLength;
  // A text within a text: its length is known when it is there.
  auto const put_nested = [this](auto const& put) {
    UInt32 const start = buffer_.fBufferLength;
    PutNumber(0);
    put();
    UInt32 const length = buffer_.fBufferLength - start - UInt32{sizeof(UInt32)};
    if (is_full_) return;
    std::memcpy(reinterpret_cast<char*>(&buffer_) + kData + start, &length, sizeof length);
  };
  put_nested([&] {
    PutText(record.name);
    PutText(record.type);
    PutNumber(record.attributes.size());
    for (machine::DirectoryAttribute const& attribute : record.attributes) {
      put_nested([&] {
        PutText(attribute.name);
        PutNumber(has_values ? attribute.values.size() : 0);
        if (!has_values) return;
        for (std::string const& value : attribute.values) PutText(value);
      });
    }
  });
  return Keep(before);
}

Expected<std::string_view> NodeNameIn(tDataBuffer const& buffer, UInt32 index) {
  return ItemIn(buffer, Content::kNodeNames, index);
}

Expected<RecordInBuffer> RecordIn(tDataBuffer const& buffer, UInt32 index) {
  Expected<std::string_view> const item = ItemIn(buffer, Content::kRecords, index);
  if (!item.value) return {{}, item.status};
  Cursor cursor(*item.value);
  RecordInBuffer record;
  record.name = cursor.Text();
  record.type = cursor.Text();
  record.attributes.count = cursor.Number();
  if (!cursor.is_good()) return {{}, eDSCorruptBuffer};
  record.attributes.place = PlaceOf(buffer, cursor.rest());
  return {record, eDSNoErr};
}

Expected<AttributeInBuffer> AttributeIn(tDataBuffer const& buffer,
                                        AttributesInBuffer const& attributes, UInt32 index) {
  if (index == 0 || index > attributes.count) return {{}, eDSIndexOutOfRange};
  auto const text = TextAt(buffer, attributes.place);
  if (!text) return {{}, eDSCorruptBuffer};
  Cursor cursor(Cursor(*text).TextAt(index));
  AttributeInBuffer attribute;
  attribute.name = cursor.Text();
  UInt32 const count = cursor.Number();
  for (UInt32 i = 0; i < count; ++i) {
    std::string_view const value = cursor.Text();
    if (!cursor.is_good()) return {{}, eDSCorruptBuffer};
    attribute.values.push_back(PlaceOf(buffer, value));
  }
  if (!cursor.is_good()) return {{}, eDSCorruptBuffer};
  return {std::move(attribute), eDSNoErr};
}

}  // namespace directory_service
