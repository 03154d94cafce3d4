// What a parser reports, a line for each call: "+name x=1", "-name", "?name x=1", "'text'".
#pragma once

#include <string>
#include <vector>

#include "inspectors/activedirectory/directory/simple_xml_parser.h"

class XmlEvents : public XMLHandler {
 public:
  std::vector<std::string> lines;

  void StartElement(std::string const& name,
                    std::vector<XMLAttribute*> const& attributes) override {
    lines.push_back("+" + Tag(name, attributes));
  }
  void EndElement(std::string const& name) override { lines.push_back("-" + name); }
  void Characters(std::string const& text) override { lines.push_back("'" + text + "'"); }
  void DoProcessingInstructionElement(std::string const& name,
                                      std::vector<XMLAttribute*> const& attributes) override {
    lines.push_back(Tag(name, attributes));
  }

 private:
  static std::string Tag(std::string tag, std::vector<XMLAttribute*> const& attributes) {
    for (XMLAttribute const* attribute : attributes) {
      tag += " " + attribute->first + "=" + attribute->second;
    }
    return tag;
  }
};

// Fed in pieces of `piece` bytes each.
inline std::vector<std::string> EventsOf(std::string const& text, std::size_t piece) {
  XmlEvents events;
  SimpleXMLParserPL parser(events);
  for (std::size_t at = 0; at < text.size(); at += piece) parser.Parse(text.substr(at, piece));
  return events.lines;
}
