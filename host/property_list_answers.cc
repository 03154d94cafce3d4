#include "host/property_list_answers.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "frame/inspector_strings.h"
#include "frame/registration.h"
#include "host/property_list_json.h"
#include "inspectors/plist/osx_array.h"
#include "inspectors/plist/osx_dictionary.h"
#include "inspectors/plist/osx_value.h"

namespace gatotu::host {

// Its name is part of the message.
class JsonTooLong : public std::length_error {
 public:
  JsonTooLong()
      : std::length_error("the property list takes more than " +
                          std::to_string(kMostPropertyListBytes) + " bytes as JSON") {}
};

namespace {

CFTypeRef ObjectOf(OSXArray const& array) { return array.Array(); }
CFTypeRef ObjectOf(OSXDictionary const& dictionary) { return dictionary.Dictionary(); }
CFTypeRef ObjectOf(OSXValue const& value) { return value.Object(); }

template <class T>
CFTypeRef ObjectAt(void const* address) {
  return ObjectOf(*static_cast<T const*>(address));
}

struct Reader {
  std::string_view type;
  CFTypeRef (*object_at)(void const* address);
};
constexpr Reader kReaders[] = {
    {kTypeNameOf<OSXArray>, ObjectAt<OSXArray>},
    {kTypeNameOf<OSXDictionary>, ObjectAt<OSXDictionary>},
    {kTypeNameOf<OSXValue>, ObjectAt<OSXValue>},
};

Reader const* FindReader(ValueType const& type) {
  if (type.kind != ValueType::Kind::kObject) return nullptr;
  auto const* const found =
      std::find_if(std::begin(kReaders), std::end(kReaders),
                   [&](Reader const& each) { return each.type == type.name; });
  return found != std::end(kReaders) ? found : nullptr;
}

bool NeedsNoText(ValueType const& type) {
  switch (type.kind) {
    case ValueType::Kind::kObject:
      return FindReader(type) != nullptr;
    case ValueType::Kind::kTuple:
      return std::all_of(type.members.begin(), type.members.end(), NeedsNoText);
    default:
      return true;
  }
}

bool IsNotShowable(Diagnostic const& diagnostic) { return diagnostic.code == "not-showable"; }

template <class T>
inspector_string AsJson(T const& value) {
  std::string text;
  PropertyListJson json(ObjectOf(value), text, kMostPropertyListBytes);
  for (;;) {
    switch (json.Continue()) {
      case PropertyListJson::State::kMore:
        Check_For_Inspector_Interruption();
        break;
      case PropertyListJson::State::kDone:
        return CopyToInspectorString(ConstData(text));
      case PropertyListJson::State::kTooLong:
        throw JsonTooLong();
    }
  }
}

Cast<OSXArray, inspector_string> array_as_json("json", AsJson<OSXArray>, nullptr);
Cast<OSXDictionary, inspector_string> dictionary_as_json("json", AsJson<OSXDictionary>, nullptr);
Cast<OSXValue, inspector_string> value_as_json("json", AsJson<OSXValue>, nullptr);

}  // namespace

Compilation CompileToShow(std::string_view text, bool shows_property_lists) {
  Compilation shown = Compile(text);
  if (shown.expression != nullptr || !shows_property_lists ||
      !std::all_of(shown.diagnostics.begin(), shown.diagnostics.end(), IsNotShowable)) {
    return shown;
  }
  Compilation used = Compile(text, Purpose::kUse);
  if (used.expression != nullptr && NeedsNoText(used.expression->Type())) return used;
  return shown;
}

CFTypeRef PropertyListOf(Value const& value) {
  Reader const* const reader = FindReader(value.Type());
  return reader != nullptr ? reader->object_at(value.Address()) : nullptr;
}

}  // namespace gatotu::host
