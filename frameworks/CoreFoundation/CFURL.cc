#include <CoreFoundation/CFURL.h>

#include <cstring>
#include <functional>

#include "frameworks/CoreFoundation/file_system_text.h"
#include "frameworks/CoreFoundation/url_object.h"
#include "frameworks/CoreFoundation/url_text.h"
#include "frameworks/CoreFoundation/volume_paths.h"
#include "machine/machine.h"

using file_system_text::BytesOf;
using file_system_text::CreateString;

__CFURL::__CFURL(Parts parts, bool is_file, CFURLRef base)
    : CFObject(kCFTypeURL), parts_(std::move(parts)), is_file_(is_file), base_(base) {
  if (base_ != nullptr) CFRetain(base_);
}

__CFURL::~__CFURL() {
  if (base_ != nullptr) CFRelease(base_);
  if (CFStringRef const text = text_.load(); text != nullptr) CFRelease(text);
}

CFURLRef __CFURL::OfFile(std::string path, CFURLRef base) {
  return Of({base == nullptr ? "file://" : "", std::move(path), ""}, true, base);
}

CFURLRef __CFURL::Of(Parts parts, bool is_file, CFURLRef base) {
  return CFObject::Make<__CFURL>(std::move(parts), is_file, base);
}

// Two threads may make it at once; one text stays.
CFStringRef __CFURL::text() const {
  if (CFStringRef const made = text_.load(); made != nullptr) return made;
  std::string const path =
      is_file_ ? url_text::Escape(parts_.path, parts_.prefix.empty()) : parts_.path;
  CFStringRef const text = CreateString(parts_.prefix + path + parts_.suffix);
  CFStringRef before = nullptr;
  if (text_.compare_exchange_strong(before, text)) return text;
  CFRelease(text);
  return before;
}

// `.` and `..` are left to the file system, which alone knows where links lead.
std::string __CFURL::AbsolutePath() const {
  if (base_ == nullptr || parts_.path.starts_with('/')) return parts_.path;
  std::string path = base_->AbsolutePath();
  path.resize(path.rfind('/') + 1);
  return path + parts_.path;
}

bool __CFURL::EqualTo(CFObject const& other) const {
  auto const& url = static_cast<__CFURL const&>(other);
  if ((base_ == nullptr) != (url.base_ == nullptr)) return false;
  return is_file_ == url.is_file_ && parts_.path == url.parts_.path &&
         parts_.prefix == url.parts_.prefix && parts_.suffix == url.parts_.suffix &&
         (base_ == nullptr || CFEqual(base_, url.base_));
}

CFHashCode __CFURL::Hash() const { return std::hash<std::string>()(parts_.path); }

namespace {

bool IsPath(std::string_view path) {
  return !path.empty() && path.find('\0') == std::string_view::npos;
}

// A URL of a path as it is spelt, absolute or relative to the base.
CFURLRef UrlOfPath(std::string path, bool is_folder, CFURLRef base) {
  path.resize(url_text::WithoutTrailingSlashes(path).size());
  if (is_folder && !path.ends_with('/')) path.push_back('/');
  bool const is_relative = !path.starts_with('/');
  return __CFURL::OfFile(std::move(path), is_relative ? base : nullptr);
}

CFURLRef UrlOfCurrentFolder() {
  auto const folder = machine::CurrentMachine().Files().WorkingFolder();
  return UrlOfPath(folder ? *folder : "/", true, nullptr);
}

CFURLRef UrlBelow(std::string path, bool is_folder, CFURLRef base) {
  if (!IsPath(path)) return nullptr;
  if (path.starts_with('/')) return UrlOfPath(std::move(path), is_folder, nullptr);
  if (base != nullptr) {
    return base->is_file() ? UrlOfPath(std::move(path), is_folder, base) : nullptr;
  }
  CFURLRef const current = UrlOfCurrentFolder();
  CFURLRef const url = UrlOfPath(std::move(path), is_folder, current);
  CFRelease(current);
  return url;
}

// The parts of well-formed text; false for what has no form of ours.
bool Parse(std::string_view text, bool is_below_file, __CFURL::Parts& parts, bool& is_file) {
  std::size_t prefix = url_text::SchemeLength(text);
  std::string scheme(text.substr(0, prefix));
  for (char& c : scheme) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  is_file = prefix == 0 ? is_below_file : scheme == "file:";
  if (text.substr(prefix).starts_with("//")) {
    if (prefix == 0) return false;
    prefix = std::min(text.find_first_of("/?#", prefix + 2), text.size());
  }
  std::size_t const end = std::min(text.find_first_of("?#", prefix), text.size());
  std::string_view const path = text.substr(prefix, end - prefix);
  parts = {std::string(text.substr(0, prefix)), std::string(path), std::string(text.substr(end))};
  if (!is_file) return true;
  parts.path = url_text::Unescape(path);
  return IsPath(parts.path) && (prefix == 0 || path.starts_with('/'));
}

CFURLRef WithPath(CFURLRef url, std::string path) {
  return __CFURL::Of({url->parts().prefix, std::move(path), ""}, url->is_file(), url->base());
}

}  // namespace

CFTypeID CFURLGetTypeID() { return kCFTypeURL; }

CFURLRef CFURLCreateWithString(CFAllocatorRef, CFStringRef URLString, CFURLRef baseURL) {
  if (URLString == nullptr) return nullptr;
  std::string const text = BytesOf(URLString);
  __CFURL::Parts parts;
  bool is_file = false;
  bool const is_below_file = baseURL != nullptr && baseURL->is_file();
  if (text.empty() || !url_text::IsWellFormed(text)) return nullptr;
  if (!Parse(text, is_below_file, parts, is_file)) return nullptr;
  bool const is_relative = parts.prefix.empty();
  if (is_relative && baseURL == nullptr) return nullptr;
  return __CFURL::Of(std::move(parts), is_file, is_relative ? baseURL : nullptr);
}

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef filePath,
                                       CFURLPathStyle pathStyle, Boolean isDirectory) {
  return CFURLCreateWithFileSystemPathRelativeToBase(allocator, filePath, pathStyle, isDirectory,
                                                     nullptr);
}

CFURLRef CFURLCreateWithFileSystemPathRelativeToBase(CFAllocatorRef, CFStringRef filePath,
                                                     CFURLPathStyle pathStyle, Boolean isDirectory,
                                                     CFURLRef baseURL) {
  if (filePath == nullptr) return nullptr;
  std::string path = BytesOf(filePath);
  if (pathStyle == kCFURLPOSIXPathStyle) return UrlBelow(std::move(path), isDirectory, baseURL);
  std::string posix_path;
  bool const is_known = pathStyle == kCFURLHFSPathStyle && IsPath(path) &&
                        volume_paths::PosixPathOf(path, posix_path);
  return is_known ? UrlBelow(std::move(posix_path), isDirectory, baseURL) : nullptr;
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, UInt8 const* buffer,
                                                 CFIndex bufLen, Boolean isDirectory) {
  if (buffer == nullptr || bufLen <= 0) return nullptr;
  std::string path(reinterpret_cast<char const*>(buffer), static_cast<std::size_t>(bufLen));
  return UrlBelow(std::move(path), isDirectory, nullptr);
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef, CFURLRef url,
                                               CFStringRef pathComponent, Boolean isDirectory) {
  if (url == nullptr || pathComponent == nullptr) return nullptr;
  std::string const component = BytesOf(pathComponent);
  if (!IsPath(component)) return nullptr;
  std::string path = url->parts().path;
  if (!path.ends_with('/')) path.push_back('/');
  path.append(url->is_file() ? component : url_text::Escape(component, false));
  path.resize(url_text::WithoutTrailingSlashes(path).size());
  if (isDirectory && !path.ends_with('/')) path.push_back('/');
  return WithPath(url, std::move(path));
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef, CFURLRef url) {
  if (url == nullptr || url->parts().path.empty()) return nullptr;
  return WithPath(url, url_text::DeleteLastComponent(url->parts().path));
}

CFStringRef CFURLGetString(CFURLRef anURL) { return anURL->text(); }

CFURLRef CFURLGetBaseURL(CFURLRef anURL) { return anURL->base(); }

CFURLRef CFURLCopyAbsoluteURL(CFURLRef relativeURL) {
  CFURLRef root = relativeURL;
  while (root->base() != nullptr) root = root->base();
  if (root == relativeURL) return static_cast<CFURLRef>(CFRetain(relativeURL));
  return __CFURL::Of(
      {root->parts().prefix, relativeURL->AbsolutePath(), relativeURL->parts().suffix},
      relativeURL->is_file(), nullptr);
}

CFStringRef CFURLCopyScheme(CFURLRef anURL) {
  while (anURL->base() != nullptr) anURL = anURL->base();
  std::string const& prefix = anURL->parts().prefix;
  return CreateString(std::string_view(prefix).substr(0, prefix.find(':')));
}

CFStringRef CFURLCopyFileSystemPath(CFURLRef anURL, CFURLPathStyle pathStyle) {
  if (anURL == nullptr || !anURL->is_file()) return nullptr;
  std::string const& path = anURL->parts().path;
  if (path.empty()) return nullptr;
  if (pathStyle == kCFURLPOSIXPathStyle) {
    return CreateString(url_text::WithoutTrailingSlashes(path));
  }
  if (pathStyle != kCFURLHFSPathStyle) return nullptr;
  return CreateString(path.starts_with('/') ? volume_paths::HfsPathOf(path)
                                            : volume_paths::RelativeHfsPathOf(path));
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
  if (url == nullptr) return nullptr;
  std::string_view const component = url_text::LastComponent(url->parts().path);
  return CreateString(url->is_file() ? std::string(component) : url_text::Unescape(component));
}

Boolean CFURLHasDirectoryPath(CFURLRef anURL) {
  return url_text::IsFolderPath(anURL->parts().path);
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer,
                                         CFIndex maxBufLen) {
  if (url == nullptr || !url->is_file() || maxBufLen <= 0) return false;
  std::string const path = resolveAgainstBase ? url->AbsolutePath() : url->parts().path;
  std::string_view const plain = url_text::WithoutTrailingSlashes(path);
  if (plain.empty() || plain.size() >= static_cast<std::size_t>(maxBufLen)) return false;
  std::memcpy(buffer, plain.data(), plain.size());
  buffer[plain.size()] = '\0';
  return true;
}
