#include "frameworks/unicode/service.h"

#include <CoreFoundation/CFStringEncodingExt.h>
#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <mutex>

#include "frameworks/CoreFoundation/encodings/names.h"
#include "machine/never_destroyed.h"

namespace unicode {
namespace {

using encodings::kNamedEncodings;
using encodings::NamedEncoding;

struct CloseConverter {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

// Several numbers share one of ICU's converters. These names decide among them; every other name
// of such a converter belongs to the row that is not named here.
constexpr NamedEncoding kDecidedNames[] = {
    {kCFStringEncodingDOSJapanese, "windows-31j"},
    {kCFStringEncodingDOSJapanese, "csWindows31J"},
    {kCFStringEncodingDOSJapanese, "windows-932"},
    {kCFStringEncodingDOSJapanese, "cp932"},
    {kCFStringEncodingDOSJapanese, "x-ms-cp932"},
    {kCFStringEncodingDOSJapanese, "ms932"},
    {kCFStringEncodingDOSChineseSimplif, "cp936"},
    {kCFStringEncodingDOSChineseSimplif, "ms936"},
    {kCFStringEncodingDOSChineseSimplif, "windows-936"},
    {kCFStringEncodingDOSKorean, "cp949"},
    {kCFStringEncodingDOSKorean, "ms949"},
    {kCFStringEncodingDOSKorean, "windows-949"},
    {kCFStringEncodingDOSChineseTrad, "cp950"},
    {kCFStringEncodingDOSChineseTrad, "ms950"},
    {kCFStringEncodingDOSChineseTrad, "windows-950"},
};

bool SharesConverter(CFStringEncoding encoding) {
  return encoding == kCFStringEncodingDOSJapanese ||
         encoding == kCFStringEncodingDOSChineseSimplif ||
         encoding == kCFStringEncodingDOSChineseTrad;
}

// ICU's own name of the converter that a name belongs to; null for an unknown name.
char const* CanonicalName(char const* name) {
  UErrorCode status = U_ZERO_ERROR;
  return ucnv_getAlias(name, 0, &status);
}

// ICU's callbacks leave some invisible characters out; here each one lacking is replaced.
void ReplaceCharacter(void const*, UConverterFromUnicodeArgs* arguments, UChar const*, int32_t,
                      UChar32, UConverterCallbackReason reason, UErrorCode* status) {
  if (reason > UCNV_IRREGULAR) return;
  *status = U_ZERO_ERROR;
  ucnv_cbFromUWriteSub(arguments, 0, status);
}

// Leaves the error standing, which ends the conversion.
void StopEncoding(void const*, UConverterFromUnicodeArgs*, UChar const*, int32_t, UChar32,
                  UConverterCallbackReason, UErrorCode*) {}
void StopDecoding(void const*, UConverterToUnicodeArgs*, char const*, int32_t,
                  UConverterCallbackReason, UErrorCode*) {}

// The loss byte as the encoding writes that ASCII character (in its shift state), else as it is.
bool SetLossByte(UConverter* converter, UInt8 loss_byte) {
  UErrorCode status = U_ZERO_ERROR;
  if (loss_byte < 0x80) {
    UChar const character = loss_byte;
    ucnv_setSubstString(converter, &character, 1, &status);
    if (U_SUCCESS(status)) return true;
    status = U_ZERO_ERROR;
  }
  char const byte = static_cast<char>(loss_byte);
  ucnv_setSubstChars(converter, &byte, 1, &status);
  return U_SUCCESS(status);
}

std::size_t CharacterLength(UniChar const* text, std::size_t length) {
  return length > 1 && U16_IS_LEAD(text[0]) && U16_IS_TRAIL(text[1]) ? 2 : 1;
}

class IcuService final : public Service {
 public:
  CFStringEncoding FindEncoding(char const* name) override {
    for (NamedEncoding const& decided : kDecidedNames) {
      if (ucnv_compareNames(decided.name, name) == 0) return decided.number;
    }
    char const* const canonical = *name == '\0' ? nullptr : CanonicalName(name);
    if (canonical == nullptr) return kCFStringEncodingInvalidId;
    std::lock_guard lock(guard_);
    for (std::size_t i = 0; i < std::size(kNamedEncodings); ++i) {
      if (SharesConverter(kNamedEncodings[i].number)) continue;
      char const*& own = rows_[i].canonical_name;
      if (own == nullptr) own = CanonicalName(kNamedEncodings[i].name);
      if (own != nullptr && std::strcmp(own, canonical) == 0) return kNamedEncodings[i].number;
    }
    return kCFStringEncodingInvalidId;
  }

  bool Encode(CFStringEncoding encoding, UniChar const* text, std::size_t length, UInt8 loss_byte,
              UInt8* buffer, std::size_t capacity, Conversion& conversion) override {
    std::lock_guard lock(guard_);
    Row* const row = Find(encoding);
    if (row == nullptr || !SetCallback(*row, loss_byte)) return false;
    UConverter* const converter = row->converter.get();
    conversion = EncodeAll(converter, text, length);
    if (buffer == nullptr) return true;
    if (conversion.bytes > capacity) conversion = EncodeFitting(converter, text, length, capacity);
    std::memcpy(buffer, bytes_.data(), conversion.bytes);
    return true;
  }

  bool Decode(CFStringEncoding encoding, UInt8 const* bytes, std::size_t length,
              std::vector<UniChar>& text) override {
    std::lock_guard lock(guard_);
    Row* const row = Find(encoding);
    if (row == nullptr) return false;
    UConverter* const converter = row->converter.get();
    UErrorCode status = U_ZERO_ERROR;
    ucnv_reset(converter);
    auto const* source = reinterpret_cast<char const*>(bytes);
    char const* const end = source + length;
    text.clear();
    UChar piece[1024];
    do {
      status = U_ZERO_ERROR;
      UChar* target = piece;
      ucnv_toUnicode(converter, &target, std::end(piece), &source, end, nullptr, true, &status);
      text.insert(text.end(), piece, target);
    } while (status == U_BUFFER_OVERFLOW_ERROR);
    return U_SUCCESS(status);
  }

  UInt32 FoldCase(UInt32 character) override {
    return static_cast<UInt32>(u_foldCase(static_cast<UChar32>(character), U_FOLD_CASE_DEFAULT));
  }

 private:
  // What is kept of an encoding, each part from its first use on.
  struct Row {
    char const* canonical_name = nullptr;
    Converter converter;
    int loss_byte = -1;  // for which the converter is set up
  };

  // With its converter open: opening one costs five times a short conversion. Null for an unknown
  // number.
  Row* Find(CFStringEncoding encoding) {
    NamedEncoding const* const named = encodings::FindNamedEncoding(encoding);
    if (named == nullptr) return nullptr;
    Row& row = rows_[named - std::begin(kNamedEncodings)];
    if (row.converter == nullptr) {
      UErrorCode status = U_ZERO_ERROR;
      row.converter.reset(ucnv_open(named->name, &status));
      if (U_FAILURE(status)) return nullptr;
      ucnv_setToUCallBack(row.converter.get(), StopDecoding, nullptr, nullptr, nullptr, &status);
    }
    return &row;
  }

  static bool SetCallback(Row& row, UInt8 loss_byte) {
    if (row.loss_byte == loss_byte) return true;
    row.loss_byte = -1;
    UConverter* const converter = row.converter.get();
    UErrorCode status = U_ZERO_ERROR;
    ucnv_reset(converter);
    if (loss_byte != 0 && !SetLossByte(converter, loss_byte)) return false;
    ucnv_setFromUCallBack(converter, loss_byte == 0 ? StopEncoding : ReplaceCharacter, nullptr,
                          nullptr, nullptr, &status);
    if (U_FAILURE(status)) return false;
    row.loss_byte = loss_byte;
    return true;
  }

  // Converts into `bytes_`; ends before the first character that the callback refuses.
  Conversion EncodeAll(UConverter* converter, UniChar const* text, std::size_t length) {
    UErrorCode status = U_ZERO_ERROR;
    ucnv_reset(converter);
    bytes_.clear();
    auto const* const begin = reinterpret_cast<UChar const*>(text);
    UChar const* source = begin;
    char piece[1024];
    do {
      status = U_ZERO_ERROR;
      char* target = piece;
      ucnv_fromUnicode(converter, &target, std::end(piece), &source, begin + length, nullptr, true,
                       &status);
      bytes_.insert(bytes_.end(), piece, target);
    } while (status == U_BUFFER_OVERFLOW_ERROR);
    auto units = static_cast<std::size_t>(source - begin);
    if (U_SUCCESS(status) || units == 0) return {units, bytes_.size()};
    // What was read of the refused character does not count; what precedes it is written anew, so
    // that an encoding with shift states ends in its first one.
    UChar refused[16];
    int8_t count = std::size(refused);
    UErrorCode ignored = U_ZERO_ERROR;
    ucnv_getInvalidUChars(converter, refused, &count, &ignored);
    units -= std::min(units, std::max<std::size_t>(static_cast<std::size_t>(count), 1));
    return EncodeAll(converter, text, units);
  }

  // The longest run of whole characters whose bytes fit: halving finds it, since more characters
  // never take fewer bytes.
  Conversion EncodeFitting(UConverter* converter, UniChar const* text, std::size_t length,
                           std::size_t capacity) {
    std::size_t fits = 0, too_long = length;
    while (fits + 1 < too_long) {
      std::size_t const middle = fits + (too_long - fits) / 2;
      (EncodeAll(converter, text, middle).bytes <= capacity ? fits : too_long) = middle;
    }
    if (fits > 0 && CharacterLength(text + fits - 1, length - fits + 1) == 2) --fits;
    // Some encodings open even an empty text with an announcement of theirs.
    Conversion const conversion = EncodeAll(converter, text, fits);
    return conversion.bytes <= capacity ? conversion : Conversion{};
  }

  std::mutex guard_;  // of all below: ICU's converters serve one thread at a time
  Row rows_[std::size(kNamedEncodings)];
  std::vector<UInt8> bytes_;
};

}  // namespace
}  // namespace unicode

extern "C" __attribute__((visibility("default"))) unicode::Service* FrameworksUnicodeService() {
  static machine::NeverDestroyed<unicode::IcuService> service;
  return &*service;
}
