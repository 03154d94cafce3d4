#include "machine/live/registry_attributes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>

#include "machine/capture/values.h"
#include "machine/live/registry_attribute_table.h"
#include "machine/live/registry_folders.h"
#include "machine/live/text.h"

namespace machine::live {
namespace {

bool IsForAll(FileDescriptor const& item) {
  struct stat status;
  return ::fstat(item.number(), &status) == 0 && (status.st_mode & S_IROTH) != 0;
}

// False, with `errno` set, when it cannot be read or has more than `most` bytes.
bool ReadUpTo(FileDescriptor const& file, std::size_t most, std::string& bytes) {
  char piece[kLargestAttribute];
  for (;;) {
    ssize_t const size = ::read(file.number(), piece, sizeof piece);
    if (size == 0) return true;
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) return false;
    bytes.append(piece, static_cast<std::size_t>(size));
    if (bytes.size() > most) {
      errno = EINVAL;
      return false;
    }
  }
}

std::optional<std::uint64_t> HexadecimalIn(std::string_view text) {
  return ParseNumber<std::uint64_t>(text, 16);
}

Record NumberRecord(std::uint64_t number) {
  if (number > std::uint64_t{INT64_MAX}) return number;
  return static_cast<std::int64_t>(number);
}

Record LittleEndianRecord(std::uint64_t number) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift);
  return RecordBytes{std::move(bytes)};
}

// Nothing where the text is not of that form.
std::optional<Record> RecordInForm(std::string_view text, AttributeForm form) {
  switch (form) {
    case AttributeForm::kPlain:
      return RecordOfAttribute(text);
    case AttributeForm::kText:
      return std::string(text);
    case AttributeForm::kHexadecimal:
      if (auto const number = HexadecimalIn(text)) return NumberRecord(*number);
      return {};
    case AttributeForm::kLittleEndian:
      if (!text.starts_with("0x")) return {};
      if (auto const number = HexadecimalIn(text.substr(2))) return LittleEndianRecord(*number);
      return {};
  }
  return {};
}

// Nothing where it is empty or no text.
std::optional<std::string> TextOf(Root const& root, std::string const& path) {
  Fact<std::string> const bytes = ReadAttribute(root, path, kLargestAttribute);
  if (!bytes) return {};
  Record const trimmed = capture::RecordOfBytes(std::string(Trim(*bytes)));
  auto const* text = trimmed.As<std::string>();
  if (text == nullptr || text->empty()) return {};
  return *text;
}

// Where a device's own name has a "/", its folder's has a "!".
std::string DeviceName(std::string_view path) {
  std::string name(LastName(path));
  std::replace(name.begin(), name.end(), '!', '/');
  return name;
}

}  // namespace

Fact<std::string> ReadAttribute(Root const& root, std::string const& path, std::size_t most) {
  FileDescriptor const item = root.OpenItemItself(path);
  if (!item.is_open()) return AnnounceError(errno, path);
  if (!IsForAll(item)) return AnnounceAbsence(Outcome::kPermissionRefused, path, "not for all");
  FileDescriptor const file = ReopenFile(item, O_RDONLY | O_NONBLOCK);
  std::string bytes;
  if (!file.is_open() || !ReadUpTo(file, most, bytes)) return AnnounceError(errno, path);
  Announce(path, Outcome::kAnswered, bytes.size());
  return bytes;
}

Record RecordOfAttribute(std::string_view text) {
  if (text.starts_with("0x")) {
    if (auto const number = HexadecimalIn(text.substr(2))) return NumberRecord(*number);
    return std::string(text);
  }
  bool const is_negative = text.starts_with('-');
  std::string_view const digits = text.substr(is_negative ? 1 : 0);
  auto const number = ParseNumber<std::uint64_t>(digits);
  bool const is_plain = number && (digits.front() != '0' || text == "0");
  if (!is_plain || (is_negative && *number > std::uint64_t{INT64_MAX})) return std::string(text);
  if (is_negative) return -static_cast<std::int64_t>(*number);
  return NumberRecord(*number);
}

RecordDictionary PropertiesOfDevice(Root const& root, std::string const& path,
                                    std::string_view subsystem) {
  RecordDictionary properties;
  std::string last;
  std::optional<std::string> text;
  for (AttributeRow const& row : AttributesOf(subsystem)) {
    if (last != row.attribute) {
      text = TextOf(root, path + "/" + row.attribute);
      last = row.attribute;
    }
    if (!text) continue;
    if (auto record = RecordInForm(*text, row.form)) properties.Add(row.key, *std::move(record));
  }
  if (subsystem == "block" || subsystem == "net") {
    Record name = capture::RecordOfBytes(DeviceName(path));
    if (name.As<std::string>() != nullptr) properties.Add("BSD Name", std::move(name));
  }
  return properties;
}

}  // namespace machine::live
