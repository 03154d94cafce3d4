#include "portable/file_operations.h"

#include "portable/file_errors.h"

void GetDateFromNameInFileLocation(FileLocation const& location, long& year, long& month,
                                   long& day) {
  std::string const name = location.Name().MakeUTF8String();
  if (name.size() <= 8) throw IllegalFileName(location);
  auto const digit = [&](std::size_t at) {
    return static_cast<long>(static_cast<unsigned char>(name[at])) - '0';
  };
  year = 1000 * digit(0) + 100 * digit(1) + 10 * digit(2) + digit(3);
  month = 10 * digit(4) + digit(5);
  day = 10 * digit(6) + digit(7);
}
