// Answers as they lie in a caller's buffer: of our own form, since only the calls read them. What
// reads them trusts no byte, because the buffer is the caller's.
#pragma once

#include <DirectoryService/DirServicesTypes.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "machine/directory.h"

namespace directory_service {

enum class Content : UInt32 { kNodeNames = 0x6E6F6465, kRecords = 0x72656373 };

class AnswerWriter {
 public:
  // The buffer can be read when it is finished. False from `Append` when it has no room for that
  // too: what it has stays.
  AnswerWriter(tDataBuffer& buffer, Content content);
  bool Append(std::string_view node_name);
  // Of records of one `DirectoryRecords`, whose kinds are told by the place of their type.
  bool Append(machine::DirectoryRecordView const& record, bool has_values);
  // How many items the buffer has. Nothing can be appended any more.
  UInt32 Finish();
  // How large the buffer has to be for all that was appended and what did not fit.
  std::size_t needed_size() const { return needed_; }

 private:
  // What records of one kind have in common, and where the buffer has it.
  struct Kind {
    char const* identity;
    UInt32 start, type, node;
  };

  char* ContentAt(std::size_t place);
  void PutBytes(void const* bytes, std::size_t size);
  void PutNumber(std::size_t number);
  UInt32 PutText(std::string_view text);
  void PutValue(std::string_view value, machine::DirectoryRecordView const& record, UInt32 name);
  void PutKind(machine::DirectoryRecordView const& record, bool has_values);
  bool Keep(UInt32 start);

  tDataBuffer& buffer_;
  Kind kind_ = {};              // of the record before
  std::vector<UInt32> starts_;  // of what was appended
  std::size_t needed_ = 0;
  bool is_full_ = false;
};

// Places count from the start of the buffer's content: what is opened is found again without
// counting up to it, and each time without trust. There may be thousands of attributes and of
// values, each of them asked for: the search for one begins at the last that was far from where it
// began, if that is not behind it.
struct AttributesInBuffer {
  struct Place {
    UInt32 index = 1;
    UInt32 name = 0, values = 0;
  };
  UInt32 count = 0;
  Place first, known;
};

// Texts are in the buffer. Nothing where it does not hold what is asked for.
struct RecordInBuffer {
  std::string_view name, type;
  AttributesInBuffer attributes;
};
struct ValuesInBuffer {
  struct Place {
    UInt32 index = 1;
    UInt32 start = 0;
  };
  UInt32 count = 0;
  Place first, known;
};
struct AttributeInBuffer {
  std::string_view name;
  ValuesInBuffer values;
  UInt32 data_size = 0, largest_size = 0;  // of all values together, of the longest
};

// `Expected<T>` is a value or a status.
template <typename T>
struct Expected {
  std::optional<T> value;
  tDirStatus status = eDSNoErr;
};

// What the buffer holds; empty where it says that it holds more than it can.
std::string_view ContentOf(tDataBuffer const& buffer);

// Indices count from 1. What was given may remember more of its places afterwards.
Expected<std::string_view> NodeNameIn(tDataBuffer const& buffer, UInt32 index);
Expected<RecordInBuffer> RecordIn(tDataBuffer const& buffer, UInt32 index);
Expected<AttributeInBuffer> AttributeIn(tDataBuffer const& buffer, AttributesInBuffer& attributes,
                                        UInt32 index);
Expected<std::string_view> ValueIn(tDataBuffer const& buffer, ValuesInBuffer& values, UInt32 index);

}  // namespace directory_service
