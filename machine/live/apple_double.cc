#include "machine/live/apple_double.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace machine::live {
namespace {

constexpr std::uint32_t kMagic = 0x00051607;
constexpr std::uint32_t kResourceFork = 2, kFinderInfo = 9;
constexpr std::size_t kHeaderBytes = 26, kEntryBytes = 12;
// Real ones have two; what a hostile one has further on is not looked at.
constexpr std::size_t kMostEntries = 32;

std::uint32_t BigEndian(unsigned char const* bytes, int count) {
  std::uint32_t number = 0;
  for (int i = 0; i < count; ++i) number = number << 8 | bytes[i];
  return number;
}

void AppendNumber(std::string& text, std::uint32_t number, int bytes) {
  while (bytes-- > 0) text += static_cast<char>(number >> (8 * bytes));
}

}  // namespace

std::string AppleDoubleText(FinderInfo const* info, std::string const& resource_fork) {
  constexpr std::uint32_t kVersion = 0x00020000;
  constexpr int kFiller = 16;
  std::string text;
  AppendNumber(text, kMagic, 4);
  AppendNumber(text, kVersion, 4);
  text.append(kFiller, ' ');
  std::uint32_t const count = info == nullptr ? 1 : 2;
  AppendNumber(text, count, 2);
  auto offset = static_cast<std::uint32_t>(kHeaderBytes + count * kEntryBytes);
  auto const append_entry = [&](std::uint32_t id, std::size_t size) {
    AppendNumber(text, id, 4);
    AppendNumber(text, offset, 4);
    AppendNumber(text, static_cast<std::uint32_t>(size), 4);
    offset += static_cast<std::uint32_t>(size);
  };
  if (info != nullptr) append_entry(kFinderInfo, info->size());
  append_entry(kResourceFork, resource_fork.size());
  if (info != nullptr) text.append(info->begin(), info->end());
  return text + resource_fork;
}

std::optional<AppleDouble> ReadAppleDouble(int file) {
  struct stat status;
  unsigned char header[kHeaderBytes + kMostEntries * kEntryBytes];
  if (::fstat(file, &status) != 0) return {};
  ssize_t const size = ::pread(file, header, sizeof header, 0);
  if (size < static_cast<ssize_t>(kHeaderBytes) || BigEndian(header, 4) != kMagic) return {};

  AppleDouble found;
  found.bytes_read = static_cast<std::uint64_t>(size);
  std::size_t const fitting = (static_cast<std::size_t>(size) - kHeaderBytes) / kEntryBytes;
  std::size_t const told = BigEndian(header + 24, 2);
  found.is_malformed = told > fitting;
  for (std::size_t i = 0; i < std::min(fitting, told); ++i) {
    unsigned char const* entry = header + kHeaderBytes + i * kEntryBytes;
    std::uint64_t const offset = BigEndian(entry + 4, 4), length = BigEndian(entry + 8, 4);
    std::uint32_t const id = BigEndian(entry, 4);
    if (id != kResourceFork && id != kFinderInfo) continue;
    if (offset + length > static_cast<std::uint64_t>(status.st_size)) {
      found.is_malformed = true;
    } else if (id == kResourceFork) {
      found.resource_offset = offset;
      found.resource_bytes = length;
    } else {
      FinderInfo info{};
      ssize_t const got = ::pread(file, info.data(), std::min<std::size_t>(length, info.size()),
                                  static_cast<off_t>(offset));
      if (got > 0) found.bytes_read += static_cast<std::uint64_t>(got);
      if (got > 0) found.finder_info = info;
    }
  }
  return found;
}

}  // namespace machine::live
