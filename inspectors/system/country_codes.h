#pragma once

#include <cstddef>
#include <cstdint>

#include "inspectors/system/token_table.h"

inline constexpr std::size_t kCountryCodeCount = 98;

// The platform's region codes by name, sorted; a row without a name ends them.
extern TokenTableAssociation<std::uint32_t> const kCountryCodes[kCountryCodeCount + 1];
