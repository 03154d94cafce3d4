#include "frameworks/CoreFoundation/bundle_table.h"

#include <iterator>

#include "frameworks/CoreFoundation/bundle_object.h"
#include "machine/machine.h"
#include "machine/never_destroyed.h"

namespace {

// What is kept of bundles that nobody holds: many times the questions of one evaluation, and the
// memory of a few megabytes.
constexpr std::size_t kMostBundles = 256;
constexpr std::size_t kMostBytes = std::size_t{8} << 20;

// The table's own reference is one. While the table is locked nobody can add the second.
bool IsHeld(CFBundleRef bundle) { return bundle->count() > 1; }

}  // namespace

BundleTable& BundleTable::OfProcess() {
  static machine::NeverDestroyed<BundleTable> table;
  return *table;
}

void BundleTable::ForgetOtherMachines() {
  std::uint64_t const number = machine::CurrentMachineNumber();
  if (machine_number_ == number) return;
  machine_number_ = number;
  while (!by_use_.empty()) Remove(by_use_.begin());
}

BundleTable::Found BundleTable::HandOut(Place place) {
  CFBundleRef const bundle = place->bundle;
  bool const was_held = IsHeld(bundle);
  if (!was_held) bundle->Renew();
  bundle->Retain();
  by_use_.splice(by_use_.begin(), by_use_, place);
  return {bundle, was_held};
}

BundleTable::Found BundleTable::FindFolder(std::string const& folder) {
  std::lock_guard lock(guard_);
  ForgetOtherMachines();
  auto const found = by_folder_.find(folder);
  return found == by_folder_.end() ? Found() : HandOut(found->second);
}

BundleTable::Found BundleTable::FindIdentifier(CFStringRef identifier) {
  std::lock_guard lock(guard_);
  ForgetOtherMachines();
  auto const found = by_identifier_.lower_bound(identifier);
  bool const is_found = found != by_identifier_.end() && CFEqual(found->first, identifier);
  return is_found ? HandOut(found->second) : Found();
}

// The end of the list where the bundle is not in the table.
BundleTable::Place BundleTable::PlaceOf(CFBundleRef bundle) {
  auto const found = by_folder_.find(bundle->folder());
  bool const is_found = found != by_folder_.end() && found->second->bundle == bundle;
  return is_found ? found->second : by_use_.end();
}

CFBundleRef BundleTable::Keep(CFBundleRef opened, CFBundleRef stale) {
  std::lock_guard lock(guard_);
  ForgetOtherMachines();
  auto const present = by_folder_.find(opened->folder());
  if (present != by_folder_.end() && present->second->bundle != stale) {
    opened->Release();
    return HandOut(present->second).bundle;
  }
  auto const before = present == by_folder_.end() ? by_identifier_.end() : Remove(present->second);
  if (opened->is_of_machine_in_use()) Add(opened, before);
  Trim();
  return opened;
}

void BundleTable::Forget(CFBundleRef stale) {
  std::lock_guard lock(guard_);
  if (Place const place = PlaceOf(stale); place != by_use_.end()) Remove(place);
}

void BundleTable::Weigh(CFBundleRef bundle) {
  std::lock_guard lock(guard_);
  Place const place = PlaceOf(bundle);
  if (place == by_use_.end()) return;
  bytes_ += bundle->bytes() - place->bytes;
  place->bytes = bundle->bytes();
  Trim();
}

// A bundle that took another's place keeps its turn among those of its identifier.
void BundleTable::Add(CFBundleRef bundle, Identifiers::iterator before) {
  bundle->Retain();
  by_use_.push_front({bundle, bundle->bytes()});
  bytes_ += bundle->bytes();
  by_folder_.emplace(bundle->folder(), by_use_.begin());
  if (bundle->identifier() == nullptr) return;
  bool const has_turn =
      before != by_identifier_.end() && CFEqual(before->first, bundle->identifier());
  if (has_turn) {
    by_identifier_.emplace_hint(before, bundle->identifier(), by_use_.begin());
  } else {
    by_identifier_.emplace(bundle->identifier(), by_use_.begin());
  }
}

BundleTable::Identifiers::iterator BundleTable::Remove(Place place) {
  CFBundleRef const bundle = place->bundle;
  auto next = by_identifier_.end();
  if (bundle->identifier() != nullptr) {
    auto found = by_identifier_.lower_bound(bundle->identifier());
    while (found->second != place) ++found;
    next = by_identifier_.erase(found);
  }
  by_folder_.erase(bundle->folder());
  bytes_ -= place->bytes;
  by_use_.erase(place);
  bundle->Release();
  return next;
}

// From the last used on. Bundles that are held stay, and few of them are looked at each time, so
// that holding very many costs nothing here.
void BundleTable::Trim() {
  constexpr int kMostHeld = 4;
  for (int held = 0; held < kMostHeld;) {
    bool const is_full = by_use_.size() > kMostBundles || bytes_ > kMostBytes;
    if (!is_full) return;
    Place const last = std::prev(by_use_.end());
    if (IsHeld(last->bundle)) {
      ++held;
      by_use_.splice(by_use_.begin(), by_use_, last);
    } else {
      Remove(last);
    }
  }
}
