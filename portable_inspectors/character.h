// What counts as one character of a string: a well-formed UTF-8 sequence, or else a single byte.
// So UTF-8 counts as it reads, the one-byte encodings of property lists do as well, and no byte
// sequence is an error.
#pragma once

#include <cstddef>
#include <string_view>

#include "evaluator/plugin/export.h"

// Bytes of the first character of `text`; 0 of an empty one.
GATOTU_API std::size_t FirstCharacterSize(std::string_view text);
// Bytes of the last character.
GATOTU_API std::size_t LastCharacterSize(std::string_view text);

GATOTU_API std::size_t CountCharacters(std::string_view text);

// Bytes that the first or last `count` characters take; all of `text` when it has fewer.
GATOTU_API std::size_t PrefixSize(std::string_view text, unsigned long long count);
GATOTU_API std::size_t SuffixSize(std::string_view text, unsigned long long count);
