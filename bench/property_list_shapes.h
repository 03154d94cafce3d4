// Property lists of many shapes, made up but always the same, for reading to be measured.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct PropertyListShape {
  char const* name;
  std::string (*make_xml)(std::size_t size);
};

// What files are like first, then flat lists of one kind of value, where that kind alone counts.
std::vector<PropertyListShape> const& PropertyListShapes();
