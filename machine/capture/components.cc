#include "machine/capture/components.h"

#include <algorithm>
#include <limits>

#include "machine/capture/item_list.h"
#include "machine/capture/values.h"

namespace machine::capture {
namespace {

constexpr std::size_t kLongestText = 255;

Fact<std::uint32_t> CodeIn(Field const& field) {
  Fact<std::string> const text = field.Text();
  if (!text) return text.absence();
  if (text->size() != 4) return field.Malformed("not four characters");
  std::uint32_t code = 0;
  for (char const character : *text) code = code << 8 | static_cast<unsigned char>(character);
  return code;
}

std::string TextOfCode(std::uint32_t code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(code >> shift);
  return text;
}

Fact<std::optional<std::string>> TextIn(Field const& field) {
  if (!field.exists()) return std::optional<std::string>();
  Fact<std::string> text = field.Text();
  if (!text) return text.absence();
  if (text->size() > kLongestText) return field.Malformed("longer than 255 bytes");
  return std::optional<std::string>(*std::move(text));
}

Fact<std::optional<std::uint32_t>> VersionIn(Field const& field) {
  if (!field.exists()) return std::optional<std::uint32_t>();
  Fact<std::uint64_t> const number = field.Unsigned(std::numeric_limits<std::uint32_t>::max());
  if (!number) return number.absence();
  return std::optional<std::uint32_t>(static_cast<std::uint32_t>(*number));
}

Fact<Component> ComponentIn(Field const& field) {
  Component component;
  std::optional<Absence> absence;
  auto const take = [&absence](auto& member, auto fact) {
    if (fact)
      member = *std::move(fact);
    else if (!absence)
      absence = fact.absence();
  };
  take(component.type, CodeIn(field["Type"]));
  take(component.subtype, CodeIn(field["Subtype"]));
  take(component.maker, CodeIn(field["Maker"]));
  take(component.name, TextIn(field["Name"]));
  take(component.info, TextIn(field["Info"]));
  take(component.version, VersionIn(field["Version"]));
  if (absence) return *std::move(absence);
  return component;
}

Fact<SharedComponents> ComponentsIn(Field const& field, std::vector<Absence>& left_out) {
  auto components = ItemsIn(field, ComponentIn, left_out);
  if (!components) return components.absence();
  return std::make_shared<std::vector<Component> const>(*std::move(components));
}

}  // namespace

Fact<SharedComponents> RegisteredComponents::Components() const {
  return facts_.Ask(kComponents, [this](Field const& field) {
    std::call_once(is_read_, [&] { components_ = ComponentsIn(field, left_out_); });
    std::ranges::for_each(left_out_, AnnounceLeftOut);
    return *components_;
  });
}

Record RecordOf(std::vector<Component> const& components) {
  RecordArray array;
  for (Component const& component : components) {
    RecordDictionary entries;
    entries.Add("Type", RecordOfBytes(TextOfCode(component.type)));
    entries.Add("Subtype", RecordOfBytes(TextOfCode(component.subtype)));
    entries.Add("Maker", RecordOfBytes(TextOfCode(component.maker)));
    if (component.name) entries.Add("Name", RecordOfBytes(*component.name));
    if (component.info) entries.Add("Info", RecordOfBytes(*component.info));
    if (component.version) entries.Add("Version", std::int64_t{*component.version});
    array.emplace_back(std::move(entries));
  }
  return array;
}

}  // namespace machine::capture
