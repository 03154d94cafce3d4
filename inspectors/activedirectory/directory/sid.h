// Security identifiers, as the directory gives them and as text. A binary one is: revision; count
// of sub-authorities; six bytes of authority, big-endian; then four bytes for each sub-authority,
// little-endian. Empty bytes are no SID.
#pragma once

#include <string>

#include "evaluator/plugin/export.h"
#include "portable/const_data.h"

// "S-1-5-32-544". The two upper bytes of the authority are ignored and sub-authorities of 0 are
// left out. Bytes behind the SID do not count; the text is empty when they end before it does,
// since a SID cut short would be that of somebody else.
GATOTU_API std::string XQConvertSidToStringSid(ConstData sid);

// The bytes, empty for what is no SID: fewer than four bytes of text, no authority, no
// sub-authority or more than 255. Neither the prefix nor that digits are digits is looked at. The
// dashes of the whole text tell how many sub-authorities there are, and where the text has fewer,
// its last one stands for the rest.
GATOTU_API std::string XQConvertStringSidToSid(ConstData text);

// False when either is no SID; bytes behind them do not count.
GATOTU_API bool XQEqualSid(ConstData a, ConstData b);

inline std::string ConvertSidToStringSid(ConstData sid) { return XQConvertSidToStringSid(sid); }
inline std::string ConvertStringSidToSid(ConstData text) { return XQConvertStringSidToSid(text); }
inline bool EqualSid(ConstData a, ConstData b) { return XQEqualSid(a, b); }
