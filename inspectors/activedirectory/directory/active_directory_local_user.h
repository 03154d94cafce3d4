// A local user's account in the directory.
#pragma once

#include "inspectors/activedirectory/directory/active_directory_account.h"

class GATOTU_API ActiveDirectoryLocalUser : public ActiveDirectoryAccount {
 public:
  // How the last refresh ended. Not kept in the cache file, so that each run refreshes anew.
  enum class Status : std::uint32_t { kNeverRefreshed = 0, kSucceeded = 1, kFailed = 2 };

  ActiveDirectoryLocalUser() = default;
  explicit ActiveDirectoryLocalUser(std::string name);
  ActiveDirectoryLocalUser(std::string name, std::string domain);
  // From its cache file.
  explicit ActiveDirectoryLocalUser(FileLocation const& location);

  void ClearData() override;
  std::string ToXml() const override;
  void FromXml(std::string const& text) override;

  // The first group of exactly that name.
  bool GetGroup(std::string const& name, ActiveDirectoryGroup& out) const;

  // The same as for the computer, but a user that this run has not refreshed yet is read whether or
  // not anybody asked, and a record of any age or none then; and disabled look-ups make no
  // difference.
  void Refresh(ActiveDirectoryInspectorContext const* context);

  std::string const& GetDomain() const { return domain_; }
  Status GetStatus() const { return status_; }
  void SetDomain(std::string domain) { domain_ = std::move(domain); }
  void SetStatus(Status status) { status_ = status; }

 private:
  bool FindCache(ActiveDirectoryInspectorContext const& context, FileLocation& out) const override;

  std::string domain_;
  Status status_ = Status::kNeverRefreshed;
};

template <>
struct InspectorTypeName<ActiveDirectoryLocalUser> {
  static constexpr char const* kName = "active directory local user";
};
