#include "portable/file_item.h"

#include <vector>

#include "portable/crc32.h"
#include "portable/file_reader.h"

std::uint32_t FileItem::Checksum() const {
  FileReadingPath path(Location());
  FileReader reader;
  reader.Start(path, 0);
  std::vector<unsigned char> room(64 * 1024);
  Crc32 checksum;
  for (;;) {
    Data const area(room.data(), room.size());
    Data const rest = reader.ReadUpTo(area);
    checksum.Add({area.begin, rest.begin});
    if (!rest.IsEmpty()) return checksum.Value();
  }
}
