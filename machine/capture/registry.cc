#include "machine/capture/registry.h"

#include <functional>

#include "machine/capture/registry_form.h"

namespace machine::capture {
namespace {

using Index = RegistryPlane::Index;
using SharedPlanes = std::shared_ptr<RegistryPlanes const>;

// Why something that an entry usually has was not recorded, if so.
std::optional<Absence> WhyAbsent(RecordDictionary const& entry, char const* what,
                                 std::string const& source) {
  Record const* const reasons = entry.Find(kEntryAbsent);
  if (reasons == nullptr) return {};
  Field const reason = Field(reasons, source)[what];
  if (!reason.exists()) return {};
  return AbsenceIn(reason, {Outcome::kAbsent, source, kNotRecorded});
}

Fact<std::string> ClassOf(RecordDictionary const& entry, std::string const& source) {
  if (auto why = WhyAbsent(entry, kAbsentClass, source)) return *std::move(why);
  return TextOfEntry(entry, kEntryClass, source);
}

Fact<RecordDictionary> PropertiesOf(RecordDictionary const& entry, std::string const& source) {
  if (auto why = WhyAbsent(entry, kAbsentProperties, source)) return *std::move(why);
  return PropertiesOfEntry(entry);
}

SharedRegistryNode MakeNode(SharedPlanes planes, SharedPlane plane, Index entry);

class CapturedChildren final : public RegistryChildren {
 public:
  CapturedChildren(SharedPlanes planes, SharedPlane plane, Index entry)
      : planes_(std::move(planes)),
        plane_(std::move(plane)),
        entry_(entry),
        next_(plane_->ChildrenOf(entry).first) {}

  Fact<SharedRegistryNode> Next() override {
    if (next_ < plane_->ChildrenOf(entry_).second) return MakeNode(planes_, plane_, next_++);
    auto why = WhyAbsent(plane_->FactsOf(entry_), kAbsentChildren, plane_->source());
    if (why) return *std::move(why);
    return SharedRegistryNode();
  }

 private:
  SharedPlanes const planes_;
  SharedPlane const plane_;
  Index const entry_;
  Index next_;
};

// An entry in the plane where it was found. In the others it is what has the same number.
class CapturedNode final : public RegistryNode {
 public:
  CapturedNode(SharedPlanes planes, SharedPlane plane, Index entry)
      : planes_(std::move(planes)), plane_(std::move(plane)), entry_(entry) {}

  std::uint64_t Identity() const override {
    if (auto const recorded = plane_->RecordedIdentityOf(entry_)) return *recorded;
    return std::hash<std::string>()(plane_->name() + ":" + std::to_string(entry_));
  }
  Fact<std::string> NameIn(std::string_view plane) const override {
    Fact<Seen> const seen = In(plane);
    if (!seen) return seen.absence();
    return seen->plane->NameOf(seen->entry);
  }
  Fact<std::string> PathIn(std::string_view plane) const override {
    Fact<Seen> const seen = In(plane);
    if (!seen) return seen.absence();
    return seen->plane->PathOf(seen->entry);
  }
  Fact<std::string> ClassName() const override {
    return ClassOf(plane_->FactsOf(entry_), plane_->source());
  }
  Fact<RecordDictionary> Properties() const override {
    return PropertiesOf(plane_->FactsOf(entry_), plane_->source());
  }
  Fact<std::unique_ptr<RegistryChildren>> Children(std::string_view plane) const override {
    Fact<Seen> const seen = In(plane);
    if (!seen) return seen.absence();
    return std::make_unique<CapturedChildren>(planes_, seen->plane, seen->entry);
  }

 private:
  struct Seen {
    SharedPlane plane;
    Index entry;
  };
  Fact<Seen> In(std::string_view name) const;

  SharedPlanes const planes_;
  SharedPlane const plane_;
  Index const entry_;
};

Fact<CapturedNode::Seen> CapturedNode::In(std::string_view name) const {
  if (name == plane_->name()) {
    Announce(plane_->source(), Outcome::kAnswered);
    return Seen{plane_, entry_};
  }
  Fact<SharedPlane> const other = planes_->Find(name);
  if (!other) return other.absence();
  auto const number = plane_->RecordedIdentityOf(entry_);
  auto const found = number ? (*other)->FindIdentity(*number) : std::nullopt;
  if (found) return Seen{*other, *found};
  return Absence{Outcome::kAbsent, (*other)->source(), "not in this plane"};
}

SharedRegistryNode MakeNode(SharedPlanes planes, SharedPlane plane, Index entry) {
  return std::make_shared<CapturedNode const>(std::move(planes), std::move(plane), entry);
}

class CapturedAbove final : public RegistryNode {
 public:
  CapturedAbove(SharedPlanes planes, RecordDictionary entry)
      : planes_(std::move(planes)), entry_(std::move(entry)) {}

  std::uint64_t Identity() const override {
    auto const number = Field(entry_.Find(kEntryIdentity), {}).Unsigned(UINT64_MAX);
    return number ? *number : std::hash<std::string>()(kRegistryRoot);
  }
  Fact<std::string> NameIn(std::string_view) const override { return std::string(kRegistryRoot); }
  Fact<std::string> PathIn(std::string_view plane) const override {
    return Absence{Outcome::kAbsent, std::string(plane) + ":", "the registry's root"};
  }
  Fact<std::string> ClassName() const override { return ClassOf(entry_, kRegistryKey); }
  Fact<RecordDictionary> Properties() const override { return PropertiesOf(entry_, kRegistryKey); }
  Fact<std::unique_ptr<RegistryChildren>> Children(std::string_view name) const override {
    Fact<SharedPlane> const plane = planes_->Find(name);
    if (!plane) return plane.absence();
    return std::make_unique<SingleRegistryChild>(MakeNode(planes_, *plane, 0));
  }

 private:
  SharedPlanes const planes_;
  RecordDictionary const entry_;
};

}  // namespace

Fact<SharedRegistryNode> Registry::Root() const {
  Fact<RecordDictionary> above = planes_->Above();
  if (!above) return above.absence();
  return SharedRegistryNode(std::make_shared<CapturedAbove const>(planes_, *std::move(above)));
}

Fact<SharedRegistryNode> Registry::NodeAt(std::string_view plane, std::string_view path) const {
  Fact<SharedPlane> const recorded = planes_->Find(plane);
  if (!recorded) return recorded.absence();
  auto const entry = (*recorded)->Find(path);
  if (!entry) return planes_->Missing(plane, path);
  return MakeNode(planes_, *recorded, *entry);
}

}  // namespace machine::capture
