// The registry of a machine that is asked through a recorder.
#include <algorithm>

#include "machine/capture/recording.h"
#include "machine/capture/registry_form.h"
#include "machine/capture/registry_recording.h"
#include "machine/capture/values.h"

namespace machine::capture {
namespace {

using SharedRecord = std::shared_ptr<RecordedRegistry>;

// Where in which plane an entry is; null above all planes, and where it does not fit any more.
struct RecordedPlace {
  std::string plane;
  RecordedEntry* entry = nullptr;
};

// What was asked, and where it is kept.
struct Asked {
  std::shared_ptr<Machine const> machine;
  SharedRecord recorded;

  RegistrySource const& source() const { return machine->Registry(); }
};

SharedRegistryNode MakeNode(Asked asked, SharedRegistryNode node, RecordedPlace place);

class RecordingChildren final : public RegistryChildren {
 public:
  RecordingChildren(Asked asked, std::unique_ptr<RegistryChildren> children, RecordedPlace parent)
      : asked_(std::move(asked)), children_(std::move(children)), parent_(std::move(parent)) {}

  Fact<SharedRegistryNode> Next() override;

 private:
  RecordedEntry* Keep(RegistryNode const& child);

  Asked const asked_;
  std::unique_ptr<RegistryChildren> const children_;
  RecordedPlace const parent_;
  std::size_t at_ = 0;
};

// Below the entry above all planes comes a plane's first node.
RecordedEntry* RecordingChildren::Keep(RegistryNode const& child) {
  Unobserved const unobserved;
  RecordedRegistry& recorded = *asked_.recorded;
  if (parent_.entry == nullptr) return recorded.Place(asked_.source(), parent_.plane, child);
  RecordedEntry* const entry = recorded.AddChild(*parent_.entry, parent_.plane, child);
  if (entry != nullptr) recorded.KeepOrder(*parent_.entry, at_++, *entry);
  return entry;
}

Fact<SharedRegistryNode> RecordingChildren::Next() {
  Fact<SharedRegistryNode> next = children_->Next();
  if (next && *next != nullptr) {
    return MakeNode(asked_, *next, {parent_.plane, Keep(**next)});
  }
  if (parent_.entry != nullptr) {
    asked_.recorded->KeepEnd(*parent_.entry, next ? std::nullopt : std::optional(next.absence()));
  }
  return next;
}

class RecordingNode final : public RegistryNode {
 public:
  RecordingNode(Asked asked, SharedRegistryNode node, RecordedPlace place)
      : asked_(std::move(asked)), node_(std::move(node)), place_(std::move(place)) {}

  std::uint64_t Identity() const override { return node_->Identity(); }
  Fact<std::string> NameIn(std::string_view plane) const override {
    EntryIn(plane);
    return node_->NameIn(plane);
  }
  Fact<std::string> PathIn(std::string_view plane) const override {
    EntryIn(plane);
    return node_->PathIn(plane);
  }
  Fact<std::string> ClassName() const override { return Kept(node_->ClassName()); }
  Fact<RecordDictionary> Properties() const override { return Kept(node_->Properties()); }
  Fact<std::unique_ptr<RegistryChildren>> Children(std::string_view plane) const override;

 private:
  bool IsAbove() const { return place_.plane.empty(); }
  // Null above all planes.
  RecordedEntry* EntryIn(std::string_view plane) const {
    if (IsAbove() || plane == place_.plane) return place_.entry;
    Unobserved const unobserved;
    return asked_.recorded->Place(asked_.source(), plane, *node_);
  }
  template <typename Value>
  Fact<Value> Kept(Fact<Value> fact) const {
    RecordedEntry* const entry = IsAbove() ? &asked_.recorded->Above(Identity()) : place_.entry;
    if (entry != nullptr) asked_.recorded->Keep(*entry, fact);
    return fact;
  }

  Asked const asked_;
  SharedRegistryNode const node_;
  RecordedPlace const place_;
};

Fact<std::unique_ptr<RegistryChildren>> RecordingNode::Children(std::string_view plane) const {
  RecordedEntry* const entry = EntryIn(plane);
  auto children = node_->Children(plane);
  if (!children) {
    if (entry != nullptr) asked_.recorded->KeepEnd(*entry, children.absence());
    if (IsAbove()) asked_.recorded->KeepMissingPlane(plane, children.absence());
    return children;
  }
  bool const is_kept = IsAbove() || entry != nullptr;
  if (!is_kept) return children;
  return std::make_unique<RecordingChildren>(asked_, std::move(children).value(),
                                             RecordedPlace{std::string(plane), entry});
}

SharedRegistryNode MakeNode(Asked asked, SharedRegistryNode node, RecordedPlace place) {
  return std::make_shared<RecordingNode const>(std::move(asked), std::move(node), std::move(place));
}

constexpr std::string_view kPlanes[] = {"IOService", "IOPower",    "IODeviceTree",
                                        "IOAudio",   "IOFireWire", "IOUSB"};

void AskEntry(RegistryNode const& node) {
  node.ClassName();
  node.Properties();
}

// Depth first, since a way down is short where the whole is large.
void AskPlane(RegistryNode const& root, std::string_view plane, RecordedRegistry const& recorded) {
  std::vector<std::unique_ptr<RegistryChildren>> way;
  auto const descend = [&](RegistryNode const& node) {
    if (way.size() > kMostRegistryDepth) return;
    if (auto children = node.Children(plane)) way.push_back(std::move(children).value());
  };
  descend(root);
  while (!way.empty() && !recorded.IsFull()) {
    Fact<SharedRegistryNode> const next = way.back()->Next();
    if (!next || *next == nullptr) {
      way.pop_back();
      continue;
    }
    AskEntry(**next);
    descend(**next);
  }
}

}  // namespace

Fact<SharedRegistryNode> RecordingRegistry::Root() const {
  Fact<SharedRegistryNode> root = asked_->Registry().Root();
  if (!root) {
    facts_.Keep(kRegistryKey, kRegistryRoot, root.absence());
    return root;
  }
  recorded_->Above((*root)->Identity());
  return MakeNode({asked_, recorded_}, *std::move(root), {});
}

Fact<SharedRegistryNode> RecordingRegistry::NodeAt(std::string_view plane,
                                                   std::string_view path) const {
  Fact<SharedRegistryNode> node = asked_->Registry().NodeAt(plane, path);
  if (!node) {
    facts_.Keep(kRegistryKey, KeyOfBytes(plane) + ":" + KeyOfBytes(path), node.absence());
    return node;
  }
  Unobserved const unobserved;
  RecordedEntry* const entry = recorded_->Place(asked_->Registry(), plane, **node);
  return MakeNode({asked_, recorded_}, *std::move(node), {std::string(plane), entry});
}

void AskRegistry(RegistrySource const& registry, RecordedRegistry const& recorded) {
  Fact<SharedRegistryNode> const root = registry.Root();
  if (!root) return;
  (*root)->ClassName();
  Fact<RecordDictionary> const properties = (*root)->Properties();
  std::vector<std::string> planes(std::begin(kPlanes), std::end(kPlanes));
  Record const* const named = properties ? properties->Find("IORegistryPlanes") : nullptr;
  if (auto const* names = named == nullptr ? nullptr : named->As<RecordDictionary>()) {
    for (auto const& [name, value] : names->entries()) planes.push_back(name);
  }
  std::ranges::sort(planes);
  planes.erase(std::unique(planes.begin(), planes.end()), planes.end());
  for (std::string const& plane : planes) AskPlane(**root, plane, recorded);
}

}  // namespace machine::capture
