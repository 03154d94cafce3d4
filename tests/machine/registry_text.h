// The registry as text, for expectations and for comparing machines.
#pragma once

#include <string>
#include <vector>

#include "tests/machine/machine_text.h"

template <typename Value>
std::string TextOf(machine::Fact<Value> const& fact) {
  return fact ? TextOf(machine::Record(*fact)) : "(" + std::string(NameOf(fact.outcome())) + ")";
}

inline std::vector<machine::SharedRegistryNode> ChildrenOf(machine::RegistryNode const& node,
                                                           std::string_view plane) {
  std::vector<machine::SharedRegistryNode> nodes;
  auto const children = node.Children(plane);
  while (children) {
    auto next = (*children)->Next();
    if (!next || *next == nullptr) break;
    nodes.push_back(*std::move(next));
  }
  return nodes;
}

// A line an entry, with all that is below it.
inline std::string TextOf(machine::RegistryNode const& node, std::string_view plane) {
  std::string text = TextOf(node.PathIn(plane)) + " " + TextOf(node.NameIn(plane)) + " " +
                     TextOf(node.ClassName()) + " " + TextOf(node.Properties()) + " " +
                     std::to_string(node.Identity()) + "\n";
  for (auto const& child : ChildrenOf(node, plane)) text += TextOf(*child, plane);
  return text;
}

// All planes, as far as they exist.
inline std::string TextOf(machine::RegistrySource const& registry) {
  auto const root = registry.Root();
  if (!root) return std::string(NameOf(root.outcome()));
  std::string text = TextOf((*root)->Properties()) + "\n";
  for (char const* plane :
       {"IOService", "IOPower", "IODeviceTree", "IOAudio", "IOFireWire", "IOUSB", "IOOther"}) {
    for (auto const& first : ChildrenOf(**root, plane)) {
      text += std::string(plane) + "\n" + TextOf(*first, plane);
    }
  }
  return text;
}
