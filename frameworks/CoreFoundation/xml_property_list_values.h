// Numbers, dates and data as XML property lists write them. Readers take the content of an element
// and give nothing when it is not in the form; white space around it is ignored.
#pragma once

#include <CoreFoundation/CFDate.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// -2^63 to 2^64-1: `magnitude` is at most 2^63 where the number is negative.
struct PropertyListInteger {
  std::uint64_t magnitude = 0;
  bool is_negative = false;
};

// Decimal, or hexadecimal behind "0x", with an optional sign.
std::optional<PropertyListInteger> ReadXmlInteger(std::string_view text);

// Also "nan", "inf" and "infinity" with an optional sign, in any letter case.
std::optional<double> ReadXmlReal(std::string_view text);
// The shortest form that reads back as the same number; "nan", "+infinity" and "-infinity".
void WriteXmlReal(double value, std::string& out);

// "YYYY-MM-DDThh:mm:ssZ" in the Gregorian calendar, for any time; the year may have a sign and up
// to nine digits. Only what a calendar and a clock can show is a date.
std::optional<CFAbsoluteTime> ReadXmlDate(std::string_view text);
// To the whole second before. False for a time that is not finite or whose year is too long.
bool WriteXmlDate(CFAbsoluteTime time, std::string& out);

// White space may stand anywhere, the last group is padded. `bytes` gets the result.
bool ReadBase64(std::string_view text, std::vector<UInt8>& bytes);
// In lines of `line_length` characters (a multiple of four), each between `indent` and a newline.
void WriteBase64(UInt8 const* bytes, std::size_t length, std::string_view indent,
                 std::size_t line_length, std::string& out);
