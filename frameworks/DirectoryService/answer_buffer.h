// Answers as they lie in a caller's buffer: of our own form, since only the calls read them. What
// reads them trusts no byte, because the buffer is the caller's.
#pragma once

#include <DirectoryService/DirServicesTypes.h>

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "machine/directory.h"

namespace directory_service {

enum class Content : UInt32 { kNodeNames = 0x6E6F6465, kRecords = 0x72656373 };

class AnswerWriter {
 public:
  // The buffer is empty then. False from `Append` when the buffer is too small for it: it holds
  // what it held.
  AnswerWriter(tDataBuffer& buffer, Content content);
  bool Append(std::string_view node_name);
  bool Append(machine::DirectoryRecord const& record, bool has_values);
  UInt32 count() const { return count_; }
  // How large the buffer has to be for all that was appended and what did not fit.
  std::size_t needed_size() const { return needed_; }

 private:
  void PutNumber(std::size_t number);
  void PutText(std::string_view text);
  bool Keep(UInt32 length_before);

  tDataBuffer& buffer_;
  UInt32 count_ = 0;
  std::size_t needed_ = 0;
  bool is_full_ = false;
};

// Where in the buffer's content something is: what is opened is found again without counting up to
// it, and each time without trust.
struct PlaceInBuffer {
  UInt32 start = 0, length = 0;
};
struct AttributesInBuffer {
  UInt32 count = 0;
  PlaceInBuffer place;
};

// Texts are in the buffer. Nothing where it does not hold what is asked for.
struct RecordInBuffer {
  std::string_view name, type;
  AttributesInBuffer attributes;
};
struct AttributeInBuffer {
  std::string_view name;
  std::vector<PlaceInBuffer> values;
};

// `Expected<T>` is a value or a status.
template <typename T>
struct Expected {
  std::optional<T> value;
  tDirStatus status = eDSNoErr;
};

// What the buffer holds; empty where it says that it holds more than it can.
std::string_view ContentOf(tDataBuffer const& buffer);
std::optional<std::string_view> TextAt(tDataBuffer const& buffer, PlaceInBuffer place);

// Indices count from 1.
Expected<std::string_view> NodeNameIn(tDataBuffer const& buffer, UInt32 index);
Expected<RecordInBuffer> RecordIn(tDataBuffer const& buffer, UInt32 index);
Expected<AttributeInBuffer> AttributeIn(tDataBuffer const& buffer,
                                        AttributesInBuffer const& attributes, UInt32 index);

}  // namespace directory_service
