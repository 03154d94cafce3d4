#include "frameworks/DirectoryService/answer_buffer.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace directory_service {
namespace {

constexpr std::size_t kData = offsetof(tDataBuffer, fBufferData);

// A buffer is: the content's kind, the count, where the places are, that many names of nodes or
// records, and their places. A record is: where its kind is, its name and its values; then the kind
// if the record before has another. A kind is: the records' type and node, how many attributes, and
// as often a name and how many of the values. A text is its length and bytes, or where it is
// already. Numbers are 32 bits wide in the processor's order; places count from the content's
// start.
constexpr UInt32 kIsThere = 0x8000'0000;

// So many texts to pass are worth a place to remember.
constexpr std::size_t kFar = 16;

// Reads the content from a place on.
class Cursor {
 public:
  Cursor(std::string_view content, std::size_t start)
      : content_(content),
        rest_(content.substr(std::min(start, content.size()))),
        is_good_(start <= content.size()) {}

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
    if ((length & kIsThere) != 0) return TextAt(length & ~kIsThere);
    return Bytes(length);
  }

  // So many texts, as far as there are.
  void Skip(UInt32 count) {
    for (; count > 0 && is_good_; --count) Text();
  }

  // Of the text that is there.
  std::string_view TextAt(UInt32 start) {
    Cursor there(content_, start);
    std::string_view const text = there.Bytes(there.Number());
    if (!there.is_good()) is_good_ = false;
    return text;
  }

  UInt32 place() const { return static_cast<UInt32>(content_.size() - rest_.size()); }
  bool is_good() const { return is_good_; }

 private:
  std::string_view Bytes(UInt32 length) {
    if (rest_.size() < length) is_good_ = false;
    if (!is_good_) return {};
    std::string_view const bytes = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return bytes;
  }

  std::string_view content_, rest_;
  bool is_good_;
};

// Where an item begins.
Expected<UInt32> ItemIn(tDataBuffer const& buffer, Content content, UInt32 index) {
  Cursor cursor(ContentOf(buffer), 0);
  if (cursor.Number() != static_cast<UInt32>(content)) return {{}, eDSInvalidBuffFormat};
  UInt32 const count = cursor.Number(), places = cursor.Number();
  if (cursor.is_good() && (index == 0 || index > count)) return {{}, eDSIndexOutOfRange};
  Cursor place(ContentOf(buffer), places + (std::size_t{index} - 1) * sizeof(UInt32));
  UInt32 const start = place.Number();
  if (!cursor.is_good() || !place.is_good()) return {{}, eDSCorruptBuffer};
  return {start, eDSNoErr};
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
  if (starts_.empty()) return 0;
  UInt32 const counts[] = {static_cast<UInt32>(starts_.size()), buffer_.fBufferLength};
  std::memcpy(ContentAt(buffer_.fBufferLength), starts_.data(), starts_.size() * sizeof(UInt32));
  buffer_.fBufferLength += counts[0] * UInt32{sizeof(UInt32)};
  std::memcpy(ContentAt(sizeof(UInt32)), counts, sizeof counts);
  return counts[0];
}

char* AnswerWriter::ContentAt(std::size_t place) {
  return reinterpret_cast<char*>(&buffer_) + kData + place;
}

void AnswerWriter::PutBytes(void const* bytes, std::size_t size) {
  needed_ += size;
  std::size_t const capacity = std::min(buffer_.fBufferSize, kIsThere);
  if (capacity - buffer_.fBufferLength < size) is_full_ = true;
  if (is_full_) return;
  std::memcpy(ContentAt(buffer_.fBufferLength), bytes, size);
  buffer_.fBufferLength += static_cast<UInt32>(size);
}

void AnswerWriter::PutNumber(std::size_t number) {
  auto const value = static_cast<UInt32>(number);
  PutBytes(&value, sizeof value);
}

// Where it is.
UInt32 AnswerWriter::PutText(std::string_view text) {
  UInt32 const start = buffer_.fBufferLength;
  PutNumber(text.size());
  PutBytes(text.data(), text.size());
  return start;
}

// Counts what was put since, or takes it back.
bool AnswerWriter::Keep(UInt32 start) {
  // Its place is put behind everything at the end.
  std::size_t const places = (starts_.size() + 1) * sizeof(UInt32);
  needed_ += sizeof(UInt32);
  if (buffer_.fBufferSize - buffer_.fBufferLength < places) is_full_ = true;
  if (is_full_) {
    buffer_.fBufferLength = start;
    return false;
  }
  starts_.push_back(start);
  return true;
}

bool AnswerWriter::Append(std::string_view node_name) { return Keep(PutText(node_name)); }

bool AnswerWriter::Append(machine::DirectoryRecordView const& record, bool has_values) {
  UInt32 const start = buffer_.fBufferLength;
  Kind const before = kind_;
  bool const is_new = kind_.start == 0 || kind_.identity != record.type.data();
  if (is_new) kind_ = {record.type.data(), 0, 0, 0};
  PutNumber(kind_.start);
  UInt32 const name = PutText(record.name);
  if (has_values) {
    for (std::string_view const value : record.values) PutValue(value, record, name);
  }
  if (is_new) PutKind(record, has_values);
  if (is_new && !is_full_) std::memcpy(ContentAt(start), &kind_.start, sizeof kind_.start);
  bool const is_kept = Keep(start);
  if (!is_kept) kind_ = before;
  return is_kept;
}

// Nodes put the record's name, type and node among the values.
void AnswerWriter::PutValue(std::string_view value, machine::DirectoryRecordView const& record,
                            UInt32 name) {
  auto const is = [value](std::string_view known) {
    return value.data() == known.data() && value.size() == known.size();
  };
  if (is(record.name)) return PutNumber(name | kIsThere);
  if (kind_.type != 0 && is(record.type)) return PutNumber(kind_.type | kIsThere);
  if (kind_.node != 0 && is(record.node)) return PutNumber(kind_.node | kIsThere);
  PutText(value);
}

void AnswerWriter::PutKind(machine::DirectoryRecordView const& record, bool has_values) {
  kind_.start = kind_.type = PutText(record.type);
  kind_.node = PutText(record.node);
  PutNumber(record.attributes.size());
  for (auto const& [name, count] : record.attributes) {
    PutText(name);
    PutNumber(has_values ? count : 0);
  }
}

Expected<std::string_view> NodeNameIn(tDataBuffer const& buffer, UInt32 index) {
  Expected<UInt32> const start = ItemIn(buffer, Content::kNodeNames, index);
  if (!start.value) return {{}, start.status};
  Cursor cursor(ContentOf(buffer), *start.value);
  std::string_view const name = cursor.Text();
  if (!cursor.is_good()) return {{}, eDSCorruptBuffer};
  return {name, eDSNoErr};
}

Expected<RecordInBuffer> RecordIn(tDataBuffer const& buffer, UInt32 index) {
  Expected<UInt32> const start = ItemIn(buffer, Content::kRecords, index);
  if (!start.value) return {{}, start.status};
  Cursor cursor(ContentOf(buffer), *start.value);
  Cursor kind(ContentOf(buffer), cursor.Number());
  RecordInBuffer record;
  record.name = cursor.Text();
  record.type = kind.Text();
  kind.Skip(1);
  UInt32 const count = kind.Number();
  AttributesInBuffer::Place const first = {1, kind.place(), cursor.place()};
  record.attributes = {count, first, first};
  if (!cursor.is_good() || !kind.is_good()) return {{}, eDSCorruptBuffer};
  return {record, eDSNoErr};
}

Expected<AttributeInBuffer> AttributeIn(tDataBuffer const& buffer, AttributesInBuffer& attributes,
                                        UInt32 index) {
  if (index == 0 || index > attributes.count) return {{}, eDSIndexOutOfRange};
  auto const& from = index >= attributes.known.index ? attributes.known : attributes.first;
  Cursor name(ContentOf(buffer), from.name), value(ContentOf(buffer), from.values);
  std::size_t hops = index - from.index;
  for (UInt32 at = from.index; at < index && name.is_good(); ++at) {
    name.Skip(1);
    UInt32 const count = name.Number();
    value.Skip(count);
    hops += count;
  }
  AttributesInBuffer::Place const place = {index, name.place(), value.place()};
  AttributeInBuffer attribute;
  attribute.name = name.Text();
  UInt32 const count = name.Number();
  attribute.values = {count, {1, value.place()}, {1, value.place()}};
  for (UInt32 i = 0; i < count && value.is_good(); ++i) {
    auto const size = static_cast<UInt32>(value.Text().size());
    attribute.data_size += size;
    attribute.largest_size = std::max(attribute.largest_size, size);
  }
  if (!name.is_good() || !value.is_good()) return {{}, eDSCorruptBuffer};
  if (hops > kFar) attributes.known = place;
  return {attribute, eDSNoErr};
}

Expected<std::string_view> ValueIn(tDataBuffer const& buffer, ValuesInBuffer& values,
                                   UInt32 index) {
  if (index == 0 || index > values.count) return {{}, eDSIndexOutOfRange};
  auto const& from = index >= values.known.index ? values.known : values.first;
  Cursor cursor(ContentOf(buffer), from.start);
  UInt32 const hops = index - from.index;
  cursor.Skip(hops);
  UInt32 const start = cursor.place();
  std::string_view const value = cursor.Text();
  if (!cursor.is_good()) return {{}, eDSCorruptBuffer};
  if (hops > kFar) values.known = {index, start};
  return {value, eDSNoErr};
}

}  // namespace directory_service
