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

  // Reads the account and its groups anew where somebody asked for the record and it is time; does
  // nothing without a context. Asks the directory and waits for it, so the evaluating thread does
  // not come here. Given up when the context says so, the record is as before; else it is filled or
  // tells why not, is kept in its cache file, and only then what writing that file throws is
  // thrown.
  void Refresh(ActiveDirectoryInspectorContext const* context);

 private:
  bool FindCache(ActiveDirectoryInspectorContext const& context, FileLocation& out) const override;
};

template <>
struct InspectorTypeName<ActiveDirectoryLocalComputer> {
  static constexpr char const* kName = "active directory local computer";
};
