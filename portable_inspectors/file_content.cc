// What is in a file: its bytes, its lines and its digests.
#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "frame/registration.h"
#include "portable_inspectors/digest_engine.h"
#include "portable_inspectors/file_stream.h"
#include "portable_inspectors/line_reader.h"
#include "portable_inspectors/text.h"

namespace {

using Text = inspector_string;

// Read where the result is to be, so that it is in memory once.
Text ContentOf(file const& source) {
  constexpr std::size_t kLeastRoom = 4096;
  FileStream stream(source);
  if (stream.Size() > kMostContentBytes) throw FileTooLarge(ConstData(source.Path()));
  // One byte more than the file says it has: most files end after the first read.
  std::size_t room = stream.Size() == 0 ? kLeastRoom : stream.Size() + 1;
  unsigned char* content = AllocateText(room);
  std::size_t size = 0;
  for (;;) {
    while (std::size_t const read = stream.Read(content + size, room - size)) size += read;
    if (size < room) return {content, size};
    if (size > kMostContentBytes) throw FileTooLarge(ConstData(source.Path()));
    room = std::min(2 * room, kMostContentBytes + 1);
    unsigned char* const larger = AllocateText(room);
    std::memcpy(larger, content, size);
    content = larger;
  }
}

Text CopyLine(std::optional<std::string_view> line) {
  if (!line) throw NoSuchObject();
  return CopyText(*line);
}

class LineIterator {
 public:
  Text First(file const& source) {
    lines_ = LineReader(FileStream(source));
    return Next(source);
  }
  Text Next(file const&) { return CopyLine(lines_.Next()); }

 private:
  LineReader lines_;
};

// Numbered from 1.
Text NumberedLine(unsigned long long number, file const& source) {
  if (number == 0) throw NoSuchObject();
  LineReader lines{FileStream(source)};
  while (number > 1 && lines.Next()) --number;
  return CopyLine(lines.Next());
}

Text WriteHexadecimal(std::string_view bytes) {
  std::string text;
  for (unsigned char const byte : bytes) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return CopyText(text);
}

template <DigestAlgorithm algorithm>
Text DigestOf(file const& source) {
  constexpr std::size_t kBufferSize = 128 * 1024;
  FileStream stream(source);
  std::unique_ptr<Digest> const digest = TheDigestEngine().Start(algorithm);
  std::unique_ptr<char[]> const buffer(new char[kBufferSize]);
  while (std::size_t const size = stream.Read(buffer.get(), kBufferSize)) {
    digest->Add(buffer.get(), size);
  }
  return WriteHexadecimal(digest->Finish());
}

Property<file, Text> content("content", "contents", ContentOf, nullptr);
IteratedProperty<LineIterator, file, Text> lines("line", "lines", nullptr);
NumberedProperty<file, Text> line("line", "lines", NumberedLine, nullptr);
Property<file, Text> md5("md5", "md5s", DigestOf<DigestAlgorithm::kMd5>, nullptr);
Property<file, Text> sha1("sha1", "sha1s", DigestOf<DigestAlgorithm::kSha1>, nullptr);
Property<file, Text> sha256("sha256", "sha256s", DigestOf<DigestAlgorithm::kSha256>, nullptr);

}  // namespace
