// The evaluator's entry points, linked instead of the evaluator: every registration and withdrawal
// is recorded, and nothing is evaluated but what a test calls itself.
#pragma once

#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "evaluator/plugin/entry_points.h"

struct RecordedRegistration {
  std::string call = {};  // the entry point, without its "Register_"
  void* handle = nullptr;
  unsigned long reserved = 0;
  void const* context = nullptr;
  FingerprintFunction fingerprint = nullptr;
  std::string name = {};       // singular, type or cast name, or operator code
  std::string parameter = {};  // of an operator: the right type
  std::string object = {};     // a type's base, a cast's source, an operator's left type
  std::string result = {};
  std::string plural = {};
  unsigned long size = 0;  // of a type's value or an iterator's state
  int fingerprinting = 0;
  InspectorDestroy destroy = nullptr;
  InspectorConstruct construct = nullptr;  // of an iterator's state
  InspectorGet get = nullptr;              // of an iterated property: the first element
  InspectorGet next = nullptr;
  InspectorCast cast = nullptr;
  InspectorOperator apply = nullptr;

  // Everything but addresses, on a line; "self" says that the context is the handle.
  std::string Text() const;

  // Calls the adapter; `Result` is what it constructed.
  template <class Result>
  Result Get(void const* parameter = nullptr, void const* object = nullptr) const;
};

class RecordingEvaluator {
 public:
  // The one of this process; it outlives every registration object.
  static RecordingEvaluator& Instance();

  std::vector<RecordedRegistration> registered;
  std::vector<std::pair<std::string, void*>> withdrawn;  // entry point without "Unregister_"
  std::vector<unsigned long> allocations;                // sizes asked for
  InspectorContext* context = nullptr;
  // Runs at each check for interruption, and may leave by an exception.
  std::function<void()> on_check;

  void* Allocate(unsigned long size);
  // Null where nothing was registered at this address.
  RecordedRegistration const* Find(void const* handle) const;
  // By entry point, name and object type.
  RecordedRegistration const* Find(std::string const& call, std::string const& name,
                                   std::string const& object = "") const;

 private:
  std::vector<std::unique_ptr<unsigned char[]>> memory_;
};

// A value or iterator state in storage like the evaluator's, filled with garbage first.
class RawStorage {
 public:
  explicit RawStorage(unsigned long size) : bytes_(size / sizeof(std::max_align_t) + 1) {
    std::memset(static_cast<void*>(bytes_.data()), 0xA5, size);
  }
  void* Address() { return bytes_.data(); }

 private:
  std::vector<std::max_align_t> bytes_;
};

template <class Result>
Result RecordedRegistration::Get(void const* parameter, void const* object) const {
  RawStorage storage(sizeof(Result));
  if (!get(storage.Address(), parameter, object, nullptr, context)) throw "no value";
  auto* const value = static_cast<Result*>(storage.Address());
  Result const copy = *value;
  value->~Result();
  return copy;
}
