#include <algorithm>
#include <optional>

#include "machine/live/sources.h"
#include "machine/live/text.h"

namespace machine::live {
namespace {

constexpr std::uint64_t kKilobyte = 1024;
constexpr std::uint64_t kMegabyte = kKilobyte * 1024;

std::uint64_t Little(std::string_view bytes, std::size_t at, std::size_t size) {
  std::uint64_t number = 0;
  while (size-- > 0) number = number << 8 | static_cast<unsigned char>(bytes[at + size]);
  return number;
}

// A memory device of the DMI tables (type 17): the size is at byte 12, in megabytes or, with the
// top bit, kilobytes; large ones are at byte 28. 0 is an empty socket, nothing an unknown size.
std::optional<std::uint64_t> BytesOfDevice(std::string_view device) {
  if (device.size() < 14) return {};
  std::uint64_t const size = Little(device, 12, 2);
  if (size == 0xffff) return {};
  if (size == 0x7fff) {
    if (device.size() < 32) return {};
    return (Little(device, 28, 4) & 0x7fffffff) * kMegabyte;
  }
  return (size & 0x7fff) * ((size & 0x8000) != 0 ? kKilobyte : kMegabyte);
}

// Walks the structures: type, length, handle, fields; then texts, ended by two NULs. 0 where the
// size of one device is unknown: the others alone would pass for all of the memory.
std::uint64_t BytesOfDevices(std::string_view table) {
  constexpr unsigned char kMemoryDevice = 17, kEndOfTable = 127;
  std::uint64_t sum = 0;
  while (table.size() >= 4) {
    auto const type = static_cast<unsigned char>(table[0]);
    auto const length = static_cast<unsigned char>(table[1]);
    if (length < 4 || length > table.size() || type == kEndOfTable) break;
    if (type == kMemoryDevice) {
      std::optional<std::uint64_t> const bytes = BytesOfDevice(table.substr(0, length));
      if (!bytes) return 0;
      sum += *bytes;
    }
    std::size_t const end = table.find(std::string_view("\0\0", 2), length);
    if (end == std::string_view::npos) break;
    table.remove_prefix(end + 2);
  }
  return sum;
}

bool IsMemoryBlock(std::string_view name) {
  constexpr std::string_view kPrefix = "memory";
  return name.starts_with(kPrefix) &&
         ParseNumber<std::uint64_t>(name.substr(kPrefix.size())).has_value();
}

}  // namespace

Fact<std::uint64_t> Memory::BytesOfMemoryDevices() const {
  constexpr char const* kPath = "/sys/firmware/dmi/tables/DMI";
  Fact<std::string> const table = root_.ReadFile(kPath);
  if (!table) return table.absence();
  std::uint64_t const bytes = BytesOfDevices(*table);
  if (bytes == 0) return Absence{Outcome::kAbsent, kPath, "memory devices"};
  return bytes;
}

Fact<std::uint64_t> Memory::BytesOfMemoryBlocks() const {
  std::string const folder = "/sys/devices/system/memory";
  Fact<std::string> const size_text = root_.ReadText(folder + "/block_size_bytes");
  if (!size_text) return size_text.absence();
  auto const size = ParseNumber<std::uint64_t>(*size_text, 16);
  if (!size) return Absence{Outcome::kMalformed, folder + "/block_size_bytes", {}};
  Fact<std::vector<std::string>> const names = root_.List(folder);
  if (!names) return names.absence();
  std::uint64_t const count =
      static_cast<std::uint64_t>(std::count_if(names->begin(), names->end(), IsMemoryBlock));
  std::uint64_t bytes;
  if (__builtin_mul_overflow(count, *size, &bytes)) {
    return Absence{Outcome::kMalformed, folder + "/block_size_bytes", {}};
  }
  if (bytes == 0) return Absence{Outcome::kAbsent, folder, "memory blocks"};
  return bytes;
}

Fact<std::uint64_t> Memory::BytesInMemoryInfo(std::string const& key) const {
  constexpr char const* kPath = "/proc/meminfo";
  Fact<std::string> const text = root_.ReadFile(kPath);
  if (!text) return text.absence();
  auto const value = FindValue(*text, key);
  if (!value) return Absence{Outcome::kAbsent, kPath, key};
  auto const kilobytes = ParseLeadingNumber<std::uint64_t>(*value);
  if (!kilobytes || !value->ends_with(" kB") || *kilobytes > UINT64_MAX / kKilobyte) {
    return Absence{Outcome::kMalformed, kPath, key};
  }
  return *kilobytes * kKilobyte;
}

Fact<std::uint64_t> Memory::PhysicalBytes() const {
  if (Fact<std::uint64_t> bytes = BytesOfMemoryDevices()) return bytes;
  if (Fact<std::uint64_t> bytes = BytesOfMemoryBlocks()) return bytes;
  return BytesInMemoryInfo("MemTotal");
}

Fact<std::uint64_t> Memory::SwapBytes() const { return BytesInMemoryInfo("SwapTotal"); }

}  // namespace machine::live
