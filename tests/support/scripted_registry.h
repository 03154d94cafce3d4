// A registry that a test scripts: one plane, "IOService", with "top" and leaves below it. It counts
// the nodes that somebody still holds.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "machine/registry.h"

class ScriptedRegistry final : public machine::RegistrySource {
 public:
  ScriptedRegistry() {
    properties.Add("key", std::string("value"));
    AddLeaf("a@0");
    AddLeaf("b");
  }

  // Of the first node. A leaf has none that anybody may read.
  machine::RecordDictionary properties;

  void AddLeaf(std::string name) { leaves_.push_back(std::move(name)); }
  // With the iterations in use.
  int LiveNodes() const { return static_cast<int>(held_.use_count()) - 1; }

  machine::Fact<machine::SharedRegistryNode> Root() const override { return Make(Kind::kRoot); }
  machine::Fact<machine::SharedRegistryNode> NodeAt(std::string_view plane,
                                                    std::string_view path) const override {
    if (plane == kPlane && path == "/") return Make(Kind::kFirst);
    for (std::string const& leaf : leaves_) {
      if (plane == kPlane && path == "/" + leaf) return Make(Kind::kLeaf, leaf);
    }
    return Missing();
  }

 private:
  using Held = std::shared_ptr<int>;
  enum class Kind { kRoot, kFirst, kLeaf };
  static constexpr char kPlane[] = "IOService";

  static machine::Absence Missing() { return {machine::Outcome::kAbsent, "script", {}}; }

  struct Children final : machine::RegistryChildren {
    explicit Children(Held held) : held(std::move(held)) {}
    machine::Fact<machine::SharedRegistryNode> Next() override {
      if (at == nodes.size()) return machine::SharedRegistryNode();
      return std::move(nodes[at++]);
    }
    Held const held;
    std::vector<machine::SharedRegistryNode> nodes;
    std::size_t at = 0;
  };

  struct Node final : machine::RegistryNode {
    Node(ScriptedRegistry const& registry, Kind kind, std::string name)
        : registry(registry), held(registry.held_), kind(kind), name(std::move(name)) {}

    std::uint64_t Identity() const override { return std::hash<std::string>()(name); }
    machine::Fact<std::string> NameIn(std::string_view plane) const override {
      if (plane != kPlane) return Missing();
      return name;
    }
    machine::Fact<std::string> PathIn(std::string_view plane) const override {
      if (plane != kPlane || kind == Kind::kRoot) return Missing();
      return kind == Kind::kFirst ? "/" : "/" + name;
    }
    machine::Fact<std::string> ClassName() const override { return std::string("IOService"); }
    machine::Fact<machine::RecordDictionary> Properties() const override {
      if (kind != Kind::kLeaf) return registry.properties;
      return machine::Absence{machine::Outcome::kPermissionRefused, "script", {}};
    }
    machine::Fact<std::unique_ptr<machine::RegistryChildren>> Children(
        std::string_view plane) const override {
      if (plane != kPlane) return Missing();
      auto children = std::make_unique<ScriptedRegistry::Children>(held);
      if (kind == Kind::kRoot) children->nodes.push_back(registry.Make(Kind::kFirst));
      if (kind == Kind::kFirst) {
        for (std::string const& leaf : registry.leaves_) {
          children->nodes.push_back(registry.Make(Kind::kLeaf, leaf));
        }
      }
      return children;
    }

    ScriptedRegistry const& registry;
    Held const held;
    Kind const kind;
    std::string const name;
  };

  machine::SharedRegistryNode Make(Kind kind, std::string name = "top") const {
    return std::make_shared<Node const>(*this, kind, std::move(name));
  }

  Held const held_ = std::make_shared<int>();
  std::vector<std::string> leaves_;
};
