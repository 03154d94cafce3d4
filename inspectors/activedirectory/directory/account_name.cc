#include "inspectors/activedirectory/directory/account_name.h"

AccountName TakeApart(std::string const& text) {
  std::size_t const backslash = text.find('\\'), at = text.rfind('@');
  if (backslash != std::string::npos && backslash + 1 < text.size()) {
    return {text.substr(backslash + 1), text.substr(0, backslash)};
  }
  if (at != std::string::npos && at > 0) return {text.substr(0, at), text.substr(at + 1)};
  return {text, {}};
}
