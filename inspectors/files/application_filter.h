// What tells an application from other items: a bundle whose name ends in ".app", or a program in
// the Mach-O form, whatever its name.
#pragma once

#include <cstdint>
#include <optional>

#include "portable/file_item.h"
#include "portable/file_reader.h"
#include "portable_inspectors/descendant_iterator.h"

// What a Mach-O file begins with. A universal file, which holds one such file for each of several
// architectures, begins with the same number of words: its magic, the count of architectures, and
// of the first one processor, subtype, offset, size and alignment.
struct mach_header {
  std::uint32_t magic = 0;
  std::uint32_t cputype = 0;
  std::uint32_t cpusubtype = 0;
  std::uint32_t filetype = 0;
  std::uint32_t ncmds = 0;
  std::uint32_t sizeofcmds = 0;
  std::uint32_t flags = 0;
};

// Reads the next 28 bytes, into the order of this machine. `EndOfFileError` when there are fewer.
void ReadMachHeader(FileReader& reader, mach_header* header);

// Adds applications, enters other folders. Throws a `FileIOError` for a file that cannot be read.
descendant_iterator::DescendAndAddFlags AppFilter(FileItem const& item);

// The same for what is no application at first sight: nearly everything.
std::optional<descendant_iterator::DescendAndAddFlags> AppGlance(
    descendant_iterator::Glimpse const& glimpse);
