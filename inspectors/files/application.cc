#include "inspectors/files/application.h"

#include <chrono>
#include <optional>
#include <string>

#include "evaluator/plugin/entry_points.h"
#include "evaluator/plugin/exceptions.h"
#include "frame/registration.h"
#include "inspectors/files/application_filter.h"
#include "inspectors/users/user.h"
#include "machine/machine.h"
#include "portable/file_errors.h"
#include "portable/file_name.h"
#include "portable_inspectors/moment.h"

namespace {

constexpr char kMachineFolder[] = "/Applications";

MacintoshPlatform::FileName const sApplications("Applications", kCFStringEncodingUTF8);

// Where the machine tells no time, what passes in this process counts.
moment Now() {
  using std::chrono::duration_cast, std::chrono::microseconds, std::chrono::steady_clock;
  try {
    return moment_now();
  } catch (NoSuchObject const&) {
    return moment(duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count());
  }
}

// Nothing where a user has no home, or no such folder in it. What is no absolute path is no home.
void AddFolderOf(user const& user, descendant_iterator& walk) {
  try {
    std::string const path = user.HomeDirPath();
    if (!IsAbsolutePath(path.c_str()) || path.find('\0') != std::string::npos) return;
    FileLocation const home = MakeFileLocation(ConstData(path));
    if (!home.Exists()) return;
    FileLocation const applications = home.Child(sApplications);
    if (applications.Exists()) walk.AddLocation(applications);
  } catch (NoSuchObject const&) {
  } catch (FileIOError const&) {
  }
}

// Each user counts: what lies in a home that two accounts share is found twice.
void AddFoldersOfUsers(descendant_iterator& walk) {
  try {
    user_iterator users;
    for (user each = users.First();; each = users.Next()) {
      AddFolderOf(each, walk);
      Check_For_Inspector_Interruption();
    }
  } catch (NoSuchObject const&) {
  }
}

}  // namespace

filesystem_object app_iterator::First(folder const& start) {
  if (start.Path().empty()) throw NoSuchObject();
  walk_.Init();
  walk_.AddLocation(MakeFileLocation(ConstData(start.Path())));
  return Next(start);
}

filesystem_object app_iterator::Next(folder const&) {
  return filesystem_object(walk_.NextWithFilter(AppFilter, AppGlance));
}

filesystem_object app_iterator::First() {
  static time_interval const sCacheValidDuration(180'000'000);
  static std::optional<moment> sLastScan;  // nothing: not yet, on this machine
  static std::uint64_t sLastMachine = 0;
  static std::vector<FileLocation> sCachedAppList;

  moment const now = Now();
  if (sLastMachine != machine::CurrentMachineNumber()) {
    sLastMachine = machine::CurrentMachineNumber();
    sLastScan.reset();
    sCachedAppList.clear();
  }
  if (sLastScan && now - *sLastScan < sCacheValidDuration) {
    apps_ = sCachedAppList;
  } else {
    sLastScan = now;
    try {
      ScanForApps();
    } catch (FileIOError const&) {
      sLastScan.reset();
      throw;
    }
    sCachedAppList = apps_;
    sLastScan = Now();
  }
  position_ = 0;
  return Next();
}

filesystem_object app_iterator::Next() {
  while (position_ < apps_.size()) {
    FileItem item;
    if (item.TryToGet(apps_[position_++])) return filesystem_object(std::move(item));
  }
  throw NoSuchObject();
}

void app_iterator::ScanForApps() {
  apps_.clear();
  walk_.Init();
  walk_.AddLocation(MakeFileLocation(kMachineFolder));
  AddFoldersOfUsers(walk_);
  try {
    for (;;) {
      apps_.push_back(walk_.NextWithFilter(AppFilter, AppGlance).Location());
      Check_For_Inspector_Interruption();
    }
  } catch (NoSuchObject const&) {
  }
}

filesystem_object application_of_world(unsigned char const* name, unsigned long length) {
  FileName const wanted(ConstData(name, length));
  app_iterator applications;
  for (filesystem_object found = applications.First();; found = applications.Next()) {
    if (Equal(found.Item().Name(), wanted)) return found;
    Check_For_Inspector_Interruption();
  }
}

namespace {

IteratedProperty<app_iterator, folder, filesystem_object> of_folder("application", "applications",
                                                                    nullptr);
NamedGlobalProperty<filesystem_object> by_name("application", "applications", application_of_world,
                                               nullptr);
IteratedGlobalProperty<app_iterator, filesystem_object> registered("regapp", "regapps", nullptr);
IteratedGlobalProperty<app_iterator, filesystem_object> all("application", "applications", nullptr);

}  // namespace
