// A directory group that the computer or a user belongs to.
#pragma once

#include <string>

#include "evaluator/plugin/type_name.h"
#include "inspectors/activedirectory/directory/active_directory_base.h"

// `ClearData` leaves the SID: it is what the rest is looked up by.
class GATOTU_API ActiveDirectoryGroup : public ActiveDirectoryBase {
 public:
  ActiveDirectoryGroup() = default;
  explicit ActiveDirectoryGroup(std::string name) : ActiveDirectoryBase(std::move(name)) {}

  std::string ToXml() const override;

  // The security identifier as text, "S-1-5-32-544".
  std::string const& GetSid() const { return sid_; }
  void SetSid(std::string sid) { sid_ = std::move(sid); }

 private:
  std::string sid_;
};

template <>
struct InspectorTypeName<ActiveDirectoryGroup> {
  static constexpr char const* kName = "active directory group";
};
