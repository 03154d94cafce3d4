// The registry of a capture: its planes lie in files of their own, each read once, when something
// in it is first asked for.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "machine/capture/facts.h"
#include "machine/capture/registry_plane.h"
#include "machine/live/root.h"
#include "machine/registry.h"

namespace machine::capture {

using SharedPlane = std::shared_ptr<RegistryPlane const>;

// Shared by all nodes, which may outlive the machine.
class RegistryPlanes {
 public:
  // `folder` is the capture's, null where it has none.
  RegistryPlanes(Facts const& facts, std::shared_ptr<live::Root const> folder, RecordReader reader);

  Fact<SharedPlane> Find(std::string_view plane) const;
  // What is recorded of the entry above all planes, by itself or on top of the first plane's file.
  Fact<RecordDictionary> Above() const;
  // Why there is no such plane, or no such path in it.
  Absence Missing(std::string_view plane, std::string_view path = {}) const;

 private:
  Fact<SharedPlane> Read(std::string const& plane) const;

  std::shared_ptr<live::Root const> const folder_;
  RecordReader const reader_;
  std::optional<RecordDictionary> above_;
  std::map<std::string, Absence> absences_;
  mutable std::mutex guard_;
  mutable std::map<std::string, Fact<SharedPlane>> planes_;
};

class Registry final : public RegistrySource {
 public:
  Registry(Facts const& facts, std::shared_ptr<live::Root const> folder, RecordReader reader)
      : planes_(std::make_shared<RegistryPlanes const>(facts, std::move(folder), reader)) {}
  Fact<SharedRegistryNode> Root() const override;
  Fact<SharedRegistryNode> NodeAt(std::string_view plane, std::string_view path) const override;

 private:
  std::shared_ptr<RegistryPlanes const> const planes_;
};

}  // namespace machine::capture
