// What somebody probably meant to write.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace gatotu {

// Keeps the nearest of the names it is shown, when one is near enough to be meant: the edit
// distance, with neighbours swapped counting once, is at most a third of the length.
class NearestName {
 public:
  explicit NearestName(std::string_view written);

  // True when the name is now the nearest. Of equally near names the first stays.
  bool Offer(std::string_view name);

  std::string const& Found() const { return found_; }

 private:
  std::string_view written_;
  std::size_t bound_;
  std::string found_;
};

// At most `bound`, else anything larger.
std::size_t EditDistance(std::string_view a, std::string_view b, std::size_t bound);

}  // namespace gatotu
