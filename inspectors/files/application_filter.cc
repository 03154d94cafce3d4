#include "inspectors/files/application_filter.h"

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>

#include <cstring>

#include "portable/file_errors.h"

namespace {

constexpr char kExtension[] = ".app";

constexpr std::uint32_t kMachO32 = 0xFEEDFACE, kMachO64 = 0xFEEDFACF;
constexpr std::uint32_t kUniversal = 0xCAFEBABE;
// A compiled Java class has the same magic, and a version where the count would be.
constexpr std::uint32_t kLeastJavaVersion = 19;

constexpr std::uint32_t kExecute = 2, kPreload = 5;

static_assert(sizeof(mach_header) == 28 && sizeof(mach_header) <= descendant_iterator::kStartBytes);

bool IsOfOtherByteOrder(std::uint32_t magic) {
  return magic == __builtin_bswap32(kMachO32) || magic == __builtin_bswap32(kMachO64) ||
         magic == __builtin_bswap32(kUniversal);
}

void SetHeader(unsigned char const (&bytes)[sizeof(mach_header)], mach_header* header) {
  std::memcpy(header, bytes, sizeof bytes);
  if (!IsOfOtherByteOrder(header->magic)) return;
  for (std::uint32_t* word :
       {&header->magic, &header->cputype, &header->cpusubtype, &header->filetype, &header->ncmds,
        &header->sizeofcmds, &header->flags}) {
    *word = __builtin_bswap32(*word);
  }
}

bool IsProgram(mach_header const& header) {
  return (header.magic == kMachO32 || header.magic == kMachO64) &&
         (header.filetype == kExecute || header.filetype == kPreload);
}

bool IsUniversal(mach_header const& header) {
  return header.magic == kUniversal && header.cputype < kLeastJavaVersion;
}

std::uint32_t OffsetOfFirst(mach_header const& universal) { return universal.ncmds; }

bool HoldsProgram(FileLocation const& location) {
  FileReadingPath const path(location);
  FileReader reader;
  reader.Start(path, 0);
  mach_header header;
  ReadMachHeader(reader, &header);
  if (!IsProgram(header) && IsUniversal(header)) {
    reader.Start(path, OffsetOfFirst(header));
    ReadMachHeader(reader, &header);
  }
  return IsProgram(header);
}

}  // namespace

void ReadMachHeader(FileReader& reader, mach_header* header) {
  unsigned char bytes[sizeof(mach_header)];
  Data const rest = reader >> Data(bytes, sizeof bytes);
  if (!rest.IsEmpty()) throw EndOfFileError(eofErr);
  SetHeader(bytes, header);
}

descendant_iterator::DescendAndAddFlags AppFilter(FileItem const& item) {
  FileLocation const location = item.Location();
  if (!item.IsDirectory()) {
    return HoldsProgram(location) ? descendant_iterator::kAdd : descendant_iterator::kSkip;
  }
  bool const is_application = item.Name().HasExtension(kExtension, false) &&
                              CFBundleGetPackageInfoInDirectory(location.URL(), nullptr, nullptr);
  if (is_application) return descendant_iterator::kAdd;
  return location.IsLink() ? descendant_iterator::kSkip : descendant_iterator::kDescend;
}

std::optional<descendant_iterator::DescendAndAddFlags> AppGlance(
    descendant_iterator::Glimpse const& glimpse) {
  if (glimpse.is_folder) {
    // A folder itself is no link: of a Finder alias, only files have the flag.
    if (glimpse.name.ends_with(kExtension)) return std::nullopt;
    return descendant_iterator::kDescend;
  }
  unsigned char bytes[sizeof(mach_header)];
  if (glimpse.start.Length() < sizeof bytes) return descendant_iterator::kSkip;
  std::memcpy(bytes, glimpse.start.begin, sizeof bytes);
  mach_header header;
  SetHeader(bytes, &header);
  if (IsProgram(header) || IsUniversal(header)) return std::nullopt;
  return descendant_iterator::kSkip;
}
