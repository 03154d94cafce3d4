// What a reader of the record XML is told.
#pragma once

#include <string>
#include <vector>

template <class First, class Second>
struct Pair {
  First first;
  Second second;
};

// Name and value.
using XMLAttribute = Pair<std::string, std::string>;

// Everything passed is valid during the call only.
class XMLHandler {
 public:
  virtual ~XMLHandler() = default;

  // The attributes are in the tag's order.
  virtual void StartElement(std::string const& name,
                            std::vector<XMLAttribute*> const& attributes) = 0;
  virtual void EndElement(std::string const& name) = 0;
  // Text between two tags may come in several pieces.
  virtual void Characters(std::string const& text) = 0;
  // The name begins with its "?".
  virtual void DoProcessingInstructionElement(std::string const& /*name*/,
                                              std::vector<XMLAttribute*> const& /*attributes*/) {}
};
