#include <limits>

#include "machine/capture/sources.h"

namespace machine::capture {
namespace {

template <typename Number>
Fact<Number> NumberOf(Field const& field) {
  Fact<std::uint64_t> const number = field.Unsigned(std::numeric_limits<Number>::max());
  if (!number) return number.absence();
  return static_cast<Number>(*number);
}

template <typename Number>
Fact<Number> NumberIn(Facts const& facts, char const* group, char const* key) {
  return facts.Ask(group, key, NumberOf<Number>);
}

constexpr char kMemory[] = "Memory", kProcessors[] = "Processors", kHardware[] = "Hardware";

bool IsCount(Facts const& facts) { return facts[kProcessors].As<std::int64_t>() != nullptr; }

// What a number alone does not tell.
Fact<std::uint32_t> NumberOfProcessors(Facts const& facts, std::string const& key) {
  if (IsCount(facts)) return facts.Missing(std::string(kProcessors) + "." + key);
  return NumberIn<std::uint32_t>(facts, kProcessors, key.c_str());
}

// By the names that kernels have for them.
Fact<Architecture> KindIn(Field const& field) {
  Fact<std::string> const name = field.Text();
  if (!name) return name.absence();
  bool const is_86 = name->size() == 4 && name->front() == 'i' && name->ends_with("86");
  if (is_86 || name->starts_with("x86")) return Architecture::kX86;
  if (name->starts_with("ppc") || name->starts_with("Power")) return Architecture::kPowerPC;
  return Architecture::kOther;
}

}  // namespace

Fact<std::uint64_t> Memory::PhysicalBytes() const {
  return NumberIn<std::uint64_t>(facts_, kMemory, "PhysicalBytes");
}

Fact<std::uint64_t> Memory::SwapBytes() const {
  return NumberIn<std::uint64_t>(facts_, kMemory, "SwapBytes");
}

// A number alone is how many there are.
Fact<std::uint32_t> Processors::OnlineCount() const {
  return IsCount(facts_) ? facts_.Ask(kProcessors, NumberOf<std::uint32_t>)
                         : NumberIn<std::uint32_t>(facts_, kProcessors, "Count");
}

Fact<Architecture> Processors::Kind() const {
  bool const is_within =
      facts_[kProcessors]["Kind"].exists() || !(IsCount(facts_) || facts_.Knows("Architecture"));
  return is_within ? facts_.Ask(kProcessors, "Kind", KindIn) : facts_.Ask("Architecture", KindIn);
}

Fact<std::uint32_t> Processors::PowerPCVersion() const {
  return NumberOfProcessors(facts_, "PowerPCVersion");
}

Fact<std::uint32_t> Processors::HighestMegahertz() const {
  return NumberOfProcessors(facts_, "Megahertz");
}

Fact<std::string> Hardware::ProductName() const { return facts_.Text(kHardware, "ProductName"); }

Fact<std::uint32_t> Hardware::UsbRelease() const {
  return NumberIn<std::uint32_t>(facts_, kHardware, "USBRelease");
}

Fact<bool> Hardware::HasUsb() const {
  return facts_.Ask(kHardware, "HasUSB", [](Field const& field) { return field.Truth(); });
}

}  // namespace machine::capture
