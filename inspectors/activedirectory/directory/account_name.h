// Who a user is to a directory, as sessions and settings write it.
#pragma once

#include <compare>
#include <string>

#include "evaluator/plugin/export.h"

struct AccountName {
  std::string name, domain;  // bytes of any kind; the domain may be empty

  bool operator==(AccountName const&) const = default;
  auto operator<=>(AccountName const&) const = default;
};

// "DOMAIN\name" or "name@domain" taken apart; what is neither is a name.
GATOTU_API AccountName TakeApart(std::string const& text);
