// The elements of a record's XML. Texts are written as they are: readers of these files decode
// references, writers never made any.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// `<element>content</element>`, also for an empty content.
void AppendElement(std::string& xml, std::string_view element, std::string_view content);
// The same, but nothing for an empty text.
void AppendText(std::string& xml, std::string_view element, std::string_view text);
void AppendNumber(std::string& xml, std::string_view element, std::uint32_t number);
