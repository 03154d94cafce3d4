// ASCII as sets of bytes, case tables and what compares through them. No locale is consulted.
#pragma once

#include <array>
#include <string>

#include "portable/buffer.h"
#include "portable/byte_set.h"
#include "portable/const_data.h"
#include "portable/data_filter.h"

namespace Ascii {

GATOTU_API ByteSet const& WhiteSpace();        // TAB, LF, CR, blank; neither VT nor FF
GATOTU_API ByteSet const& LinearWhiteSpace();  // TAB, blank
GATOTU_API ByteSet const& Printable();         // without the blank
GATOTU_API ByteSet const& PlainText();         // with the blank
GATOTU_API ByteSet const& Unprintable();
GATOTU_API ByteSet const& Control();
GATOTU_API ByteSet const& High();
GATOTU_API ByteSet const& Low();
GATOTU_API ByteSet const& Alphabetic();
GATOTU_API ByteSet const& Alphabetic_();  // with the underscore
GATOTU_API ByteSet const& Numeric();
GATOTU_API ByteSet const& Alphanumeric();
GATOTU_API ByteSet const& Alphanumeric_();
GATOTU_API ByteSet const& HexDigits();
GATOTU_API ByteSet const& Punctuation();
GATOTU_API ByteSet const& UppercaseAlphabet();
GATOTU_API ByteSet const& LowercaseAlphabet();

// Each maps the letters of the other case, and every other byte to itself.
using ByteTable = std::array<unsigned char, 256>;
GATOTU_API extern ByteTable const uppercase;
GATOTU_API extern ByteTable const lowercase;
GATOTU_API bool CaseTablesAreCorrect();

// Of 0 to 15, in lower case.
GATOTU_API unsigned char HexDigit(unsigned value);
// Of a byte that is a hexadecimal digit; nonsense for any other.
GATOTU_API unsigned HexDigitValue(unsigned char digit);

GATOTU_API bool EqualIgnoringCase(ConstData a, ConstData b);
// Through the table; of a text and one that it begins, the longer is greater.
GATOTU_API int CompareLowercase(ConstData a, ConstData b);
GATOTU_API int CompareUppercase(ConstData a, ConstData b);
GATOTU_API int CompareLowercase(char const* a, char const* b);
GATOTU_API int CompareUppercase(char const* a, char const* b);

// Whether raising or lowering the case would change nothing.
GATOTU_API bool IsLowercase(ConstData data);
GATOTU_API bool IsUppercase(ConstData data);

GATOTU_API std::string RaiseCase(ConstData data);
GATOTU_API std::string LowerCase(ConstData data);
// As far as there is input and room.
GATOTU_API void RaiseCase(ConstData source, Data destination);
GATOTU_API void LowerCase(ConstData source, Data destination);
GATOTU_API void RaiseCase(ConstBuffer& source, Buffer& destination);
GATOTU_API void LowerCase(ConstBuffer& source, Buffer& destination);

class GATOTU_API CaseRaisingFilter : public DataFilter {
 public:
  using DataFilter::operator();
  void operator()(ConstBuffer& input, Buffer& output) override;
};

class GATOTU_API CaseLoweringFilter : public DataFilter {
 public:
  using DataFilter::operator();
  void operator()(ConstBuffer& input, Buffer& output) override;
};

// The shared instances, made when first asked for.
GATOTU_API CaseRaisingFilter& RaiseCase();
GATOTU_API CaseLoweringFilter& LowerCase();

}  // namespace Ascii
