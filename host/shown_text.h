// Bytes as they are shown. The vocabulary has two encodings, the report encoding (UTF-8 in the
// command) and Mac Roman; what is no UTF-8 is read as the other.
#pragma once

#include <string>
#include <string_view>

namespace gatotu::host {

bool IsUtf8(std::string_view bytes);

// `bytes` themselves when they are UTF-8; otherwise decoded from Mac Roman into `storage`.
std::string_view ShownText(std::string_view bytes, std::string& storage);

}  // namespace gatotu::host
