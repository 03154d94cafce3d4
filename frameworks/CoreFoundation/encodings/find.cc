#include <string>

#include "frameworks/CoreFoundation/encodings/convert.h"

namespace encodings {
namespace {

// The names in most settings, in lower case and without punctuation: for these ICU stays unloaded.
struct CommonName {
  std::string_view name;
  CFStringEncoding encoding;
};
constexpr CommonName kCommonNames[] = {
    {"utf8", kCFStringEncodingUTF8},
    {"usascii", kCFStringEncodingASCII},
    {"ascii", kCFStringEncodingASCII},
    {"ansix341968", kCFStringEncodingASCII},
    {"iso646us", kCFStringEncodingASCII},
    {"iso88591", kCFStringEncodingISOLatin1},
    {"iso885911987", kCFStringEncodingISOLatin1},
    {"latin1", kCFStringEncodingISOLatin1},
    {"l1", kCFStringEncodingISOLatin1},
    {"windows1252", kCFStringEncodingWindowsLatin1},
    {"cp1252", kCFStringEncodingWindowsLatin1},
    {"macintosh", kCFStringEncodingMacRoman},
    {"mac", kCFStringEncodingMacRoman},
    {"utf16", kCFStringEncodingUTF16},
    {"utf16be", kCFStringEncodingUTF16BE},
    {"utf16le", kCFStringEncodingUTF16LE},
    {"utf32", kCFStringEncodingUTF32},
    {"utf32be", kCFStringEncodingUTF32BE},
    {"utf32le", kCFStringEncodingUTF32LE},
};

// Names are compared by their letters and digits.
constexpr std::size_t kLongestCommonName = 16;
std::string_view Bare(std::string_view name, char (&bare)[kLongestCommonName]) {
  std::size_t length = 0;
  for (char character : name) {
    bool const is_upper = character >= 'A' && character <= 'Z';
    bool const counts = is_upper || (character >= 'a' && character <= 'z') ||
                        (character >= '0' && character <= '9');
    if (!counts) continue;
    if (length == kLongestCommonName) return {};
    bare[length++] = static_cast<char>(is_upper ? character - 'A' + 'a' : character);
  }
  return {bare, length};
}

}  // namespace

NameSearch FindEncoding(std::string_view name, CFStringEncoding& encoding) {
  char buffer[kLongestCommonName];
  std::string_view const bare = Bare(name, buffer);
  for (CommonName const& common : kCommonNames) {
    if (common.name != bare) continue;
    encoding = common.encoding;
    return NameSearch::kFound;
  }
  // A NUL ends a name for ICU, so one inside would make it another name.
  if (name.empty() || name.find('\0') != std::string_view::npos) return NameSearch::kUnknown;
  unicode::Service* const service = unicode::LoadService();
  if (service == nullptr) return NameSearch::kUnavailable;
  CFStringEncoding const found = service->FindEncoding(std::string(name).c_str());
  if (found == kCFStringEncodingInvalidId) return NameSearch::kUnknown;
  encoding = found;
  return NameSearch::kFound;
}

}  // namespace encodings
