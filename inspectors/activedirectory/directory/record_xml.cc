#include "inspectors/activedirectory/directory/record_xml.h"

#include "portable/make_numeral.h"

void AppendElement(std::string& xml, std::string_view element, std::string_view content) {
  xml.append("<").append(element).append(">");
  xml.append(content);
  xml.append("</").append(element).append(">");
}

void AppendText(std::string& xml, std::string_view element, std::string_view text) {
  if (!text.empty()) AppendElement(xml, element, text);
}

void AppendNumber(std::string& xml, std::string_view element, std::uint32_t number) {
  AppendElement(xml, element, MakeAsciiDecimalNumeral(number, 1).Text());
}
