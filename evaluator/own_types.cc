// The types that the evaluator itself supplies.
#include <cstddef>

#include "evaluator/plugin/entry_points.h"
#include "evaluator/plugin/type_name.h"
#include "evaluator/registry.h"

namespace {

template <class T>
class OwnType {
 public:
  OwnType() {
    Register_Type(this, sizeof(block_), InspectorTypeName<T>::kName, sizeof(T), nullptr, nullptr,
                  kPlainBytes);
  }
  ~OwnType() { Unregister_Type(this); }
  OwnType(OwnType const&) = delete;
  OwnType& operator=(OwnType const&) = delete;

 private:
  alignas(std::max_align_t) unsigned char block_[gatotu::kTypeBlock] = {};
};

OwnType<inspector_string> string_type;
OwnType<integer> integer_type;
OwnType<boolean> boolean_type;
OwnType<hertz> hertz_type;

}  // namespace
