// The bundles that this process opened on the machine in use: all that someone holds, and for a
// while those that nobody holds any more, so that a question asked again need not read them again.
// May be used by any thread; asks the machine nothing.
#pragma once

#include <CoreFoundation/CFBundle.h>

#include <cstdint>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

class BundleTable {
 public:
  static BundleTable& OfProcess();

  // A bundle with one reference for the caller, null where there is none.
  struct Found {
    CFBundleRef bundle = nullptr;
    bool was_held = false;  // by anyone but this table
  };
  Found FindFolder(std::string const& folder);
  // Of several the one opened first.
  Found FindIdentifier(CFStringRef identifier);

  // Keeps a bundle that was opened in place of `stale`, which may be null. What is kept for that
  // folder then is returned with a reference for the caller, which gives up that to `opened`:
  // another thread may have been quicker.
  CFBundleRef Keep(CFBundleRef opened, CFBundleRef stale);
  // Forgets a bundle whose folder is none any more.
  void Forget(CFBundleRef stale);
  // Takes note that the bundle has grown.
  void Weigh(CFBundleRef bundle);

 private:
  struct Kept {
    CFBundleRef bundle;
    std::size_t bytes;
  };
  using Place = std::list<Kept>::iterator;
  struct Before {
    bool operator()(CFStringRef left, CFStringRef right) const {
      return CFStringCompare(left, right, 0) == kCFCompareLessThan;
    }
  };
  // In the order of opening where identifiers are equal.
  using Identifiers = std::multimap<CFStringRef, Place, Before>;

  void ForgetOtherMachines();
  Found HandOut(Place place);
  Place PlaceOf(CFBundleRef bundle);
  void Add(CFBundleRef bundle, Identifiers::iterator before);
  // What comes behind it in the order of identifiers.
  Identifiers::iterator Remove(Place place);
  void Trim();

  std::mutex guard_;
  std::uint64_t machine_number_ = 0;
  std::list<Kept> by_use_;  // the last used first
  std::size_t bytes_ = 0;
  std::unordered_map<std::string_view, Place> by_folder_;
  Identifiers by_identifier_;
};
