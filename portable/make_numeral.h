// Numerals of integers, with zeros in front up to `min_digits`. Zero with no `min_digits` is an
// empty text: who wants "0" asks for one digit. The sign of a negative value does not count as a
// digit. More digits than the type could need throw `ConstDataCapacityExceeded`.
#pragma once

#include <cstdint>

#include "evaluator/plugin/export.h"
#include "portable/const_data_of_capacity.h"

GATOTU_API ConstDataOfCapacity<10> MakeAsciiDecimalNumeral(std::uint32_t value,
                                                           unsigned long min_digits);
GATOTU_API ConstDataOfCapacity<20> MakeAsciiDecimalNumeral64(unsigned long long value,
                                                             unsigned long min_digits);

// The letters are small.
GATOTU_API ConstDataOfCapacity<8> MakeAsciiHexNumeral(std::uint32_t value,
                                                      unsigned long min_digits);
GATOTU_API ConstDataOfCapacity<16> MakeAsciiHexNumeral64(unsigned long long value,
                                                         unsigned long min_digits);

GATOTU_API ConstDataOfCapacity<11> MakeAsciiSignedDecimalNumeral(std::int32_t value,
                                                                 unsigned long min_digits);
GATOTU_API ConstDataOfCapacity<21> MakeAsciiSignedDecimalNumeral64(long long value,
                                                                   unsigned long min_digits);
