// Integers from their numerals. No white space is skipped and no radix prefix is known; leading
// zeros are allowed, an empty range is not a numeral.
#pragma once

#include <cstdint>

#include "evaluator/plugin/export.h"
#include "portable/const_data.h"
#include "portable/unicode_reference.h"

struct ReadNumeralResult {
  enum Value { kSuccess = 0, kNotANumeral = 1, kTooLarge = 2 };
};

// The readings that never throw. Without success the value stays as it was.
//
// Overflow is looked for before the digit is looked at, so that of both faults the first in the
// text is told, and an overlong run of digits is too large whatever follows it. The 32-bit ones
// read 64 bits first.
GATOTU_API ReadNumeralResult::Value TryReadAsciiDecimalNumeral(ConstData text,
                                                               unsigned long long& value);
GATOTU_API ReadNumeralResult::Value TryReadAsciiDecimalNumeral(ConstData text,
                                                               unsigned long& value);
GATOTU_API ReadNumeralResult::Value TryReadAsciiDecimalNumeral(ConstData text,
                                                               std::uint32_t& value);
// These take one leading `-` or `+`.
GATOTU_API ReadNumeralResult::Value TryReadAsciiDecimalNumeral(ConstData text, long long& value);
GATOTU_API ReadNumeralResult::Value TryReadAsciiDecimalNumeral(ConstData text, long& value);
GATOTU_API ReadNumeralResult::Value TryReadAsciiDecimalNumeral(ConstData text, std::int32_t& value);

// Digits of either case.
GATOTU_API ReadNumeralResult::Value TryReadAsciiHexNumeral(ConstData text,
                                                           unsigned long long& value);
GATOTU_API ReadNumeralResult::Value TryReadAsciiHexNumeral(ConstData text, unsigned long& value);
GATOTU_API ReadNumeralResult::Value TryReadAsciiHexNumeral(ConstData text, std::uint32_t& value);

// Throws the exception of a failure; returns for a success.
GATOTU_API void ThrowError(ReadNumeralResult::Value result);

// These throw `NotANumeral` or `NumeralTooLarge`.
GATOTU_API std::uint32_t ReadAsciiDecimalNumeral(ConstData text);
GATOTU_API unsigned long long ReadAsciiDecimalNumeral64(ConstData text);
GATOTU_API std::int32_t ReadAsciiSignedDecimalNumeral(ConstData text);
GATOTU_API long long ReadAsciiSignedDecimalNumeral64(ConstData text);
GATOTU_API std::uint32_t ReadAsciiHexNumeral(ConstData text);
GATOTU_API unsigned long long ReadAsciiHexNumeral64(ConstData text);
GATOTU_API std::uint32_t ReadUTF8DecimalNumeral(UStringRef<UTF8> text);
GATOTU_API unsigned long long ReadUTF8DecimalNumeral64(UStringRef<UTF8> text);

// These give the default on either failure.
GATOTU_API std::uint32_t ReadAsciiDecimalNumeral32WithDefault(ConstData text,
                                                              std::uint32_t otherwise);
GATOTU_API unsigned long long ReadAsciiDecimalNumeral64WithDefault(ConstData text,
                                                                   unsigned long long otherwise);
GATOTU_API std::int32_t ReadAsciiSignedDecimalNumeral32WithDefault(ConstData text,
                                                                   std::int32_t otherwise);
GATOTU_API long long ReadAsciiSignedDecimalNumeral64WithDefault(ConstData text,
                                                                long long otherwise);
