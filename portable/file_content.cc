#include "portable/file_content.h"

#include <algorithm>

#include "portable/file_errors.h"
#include "portable/file_reader.h"
#include "portable/macintosh/replacement_file.h"

std::string ReadFileIntoString(FileLocation const& location) {
  // Beyond the length that the file tells, for it may grow, and some tell none.
  constexpr std::size_t kMore = 4096;
  FileReadingPath path(location);
  FileReader reader;
  reader.Start(path, 0);
  std::string content;
  std::size_t length = static_cast<std::size_t>(path.Length()) + 1;
  for (std::size_t used = 0;; length = used + std::max(used, kMore)) {
    content.resize(length);
    Data const room(reinterpret_cast<unsigned char*>(content.data()) + used, length - used);
    Data const rest = reader.ReadUpTo(room);
    used = length - rest.Length();
    if (rest.IsEmpty()) continue;
    content.resize(used);
    return content;
  }
}

std::string ReadFileIntoUString(FileLocation const& location) {
  std::string text = ReadFileIntoString(location);
  RequireUnicode<UTF8>(ConstData(text));
  return text;
}

void WriteConstDataToFile(ConstData data, FileLocation const& location) {
  location.RequireNonEmpty();
  MacintoshPlatform::FileLocation place = location.Platform();
  if (place.IsSymLink()) place = place.ResolveAliasFile();
  MacintoshPlatform::ReplacementFile file(place);
  file.Write(data);
  file.TakePlace();
}

void WriteUStringToFile(UStringRef<UTF8> text, FileLocation const& location) {
  WriteConstDataToFile(text.Bytes(), location);
}

void WriteConstDataToFilePath(ConstData data, FileWritingPath& path) {
  FileLocation const location = path.Location();
  if (!path.IsOpen()) throw FileNotOpenError(location, 0);
  WriteConstDataToFile(data, location);
  path.Open(location);
}

void WriteUStringToFile(UStringRef<UTF8> text, FileWritingPath& path) {
  WriteConstDataToFilePath(text.Bytes(), path);
}
