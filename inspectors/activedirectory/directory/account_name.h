// What users are called by those who log on.
#pragma once

#include <string>

#include "evaluator/plugin/export.h"

// A user as a directory knows them.
struct AccountName {
  std::string name, domain;  // bytes of any kind; the domain may be empty

  bool operator==(AccountName const&) const = default;
  auto operator<=>(AccountName const&) const = default;
};

// "DOMAIN\name" or "name@domain" taken apart; what is neither is a name.
GATOTU_API AccountName TakeApart(std::string const& text);
