#include <CoreServices/Gestalt.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>
#include <string>

#include "machine/machine.h"
#include "machine/never_destroyed.h"

namespace {

// Texts that responses stand for, never forgotten: there are as many as a process meets different
// ones, a handful. A response is a text's place in the list, counted from a number that no size or
// small flag has, so that a plain number is not taken for one.
class ResponseStrings {
 public:
  SInt32 ResponseFor(std::string text) {
    text.resize(std::min<std::size_t>(text.size(), 255));
    std::lock_guard lock(guard_);
    auto const [place, is_new] = places_.try_emplace(text, texts_.size());
    if (is_new) texts_.push_back(static_cast<char>(text.size()) + text);
    return kFirst + static_cast<SInt32>(place->second);
  }

  unsigned char const* TextOf(SInt32 response) {
    std::lock_guard lock(guard_);
    if (response < kFirst || static_cast<std::size_t>(response - kFirst) >= texts_.size()) {
      return nullptr;
    }
    return reinterpret_cast<unsigned char const*>(
        texts_[static_cast<std::size_t>(response - kFirst)].c_str());
  }

 private:
  static constexpr SInt32 kFirst = 0x5374'0000;

  std::mutex guard_;
  std::map<std::string, std::size_t> places_;
  std::deque<std::string> texts_;  // does not move what it holds
};

ResponseStrings& Strings() {
  static machine::NeverDestroyed<ResponseStrings> strings;
  return *strings;
}

}  // namespace

OSErr Gestalt(OSType selector, SInt32* response) {
  machine::Fact<machine::GestaltResponse> const fact =
      machine::CurrentMachine().Gestalt().Response(selector);
  if (!fact) return gestaltUndefSelectorErr;
  if (auto const* number = std::get_if<std::uint32_t>(&*fact)) {
    *response = static_cast<SInt32>(*number);
  } else {
    *response = Strings().ResponseFor(std::get<std::string>(*fact));
  }
  return noErr;
}

unsigned char const* GestaltResponseString(SInt32 response) { return Strings().TextOf(response); }
