// The computer's own account in the directory.
#pragma once

#include "inspectors/activedirectory/directory/active_directory_account.h"

class GATOTU_API ActiveDirectoryLocalComputer : public ActiveDirectoryAccount {
 public:
  ActiveDirectoryLocalComputer() = default;
  // From its cache file.
  explicit ActiveDirectoryLocalComputer(FileLocation const& location);

  std::string ToXml() const override;
  void FromXml(std::string const& text) override;

  // The first group of that name, in letters of whichever case.
  bool GetGroup(std::string const& name, ActiveDirectoryGroup& out) const;

 private:
  bool FindCache(ActiveDirectoryInspectorContext const& context, FileLocation& out) const override;
};

template <>
struct InspectorTypeName<ActiveDirectoryLocalComputer> {
  static constexpr char const* kName = "active directory local computer";
};
