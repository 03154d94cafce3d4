// What was asked of a machine's SCSI buses, and what it answered. Any thread may add to it.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "machine/capture/record.h"
#include "machine/scsi.h"

namespace machine::capture {

class RecordedScsi {
 public:
  void KeepBusNumbers(Fact<std::vector<std::uint8_t>> const& numbers);
  void KeepBus(std::uint8_t number, Fact<ScsiBus> const& bus);
  void KeepTargetNumbers(std::uint8_t bus, Fact<std::vector<std::uint8_t>> const& numbers);
  void KeepInquiry(std::uint8_t bus, std::uint8_t target, Fact<std::string> const& data);
  bool Knows(std::uint8_t bus) const;

  // The buses to a document, what is wanting to its absences, and the key to those that hold only
  // what was asked, unless that was all there is.
  void AddTo(RecordDictionary& document, RecordDictionary& absent, RecordArray& partial) const;

 private:
  using Numbers = std::optional<Fact<std::vector<std::uint8_t>>>;
  struct Bus {
    std::optional<Fact<ScsiBus>> facts;
    Numbers target_numbers;
    std::map<std::uint8_t, Fact<std::string>> inquiries;
  };

  bool IsWhole() const;
  Record RecordOfGap(std::size_t number, bool is_whole) const;
  static Record RecordOfBus(Bus const& bus);

  mutable std::mutex guard_;
  Numbers bus_numbers_;
  std::map<std::uint8_t, Bus> buses_;
};

// The buses of `asked`, each answer kept. Both outlive it.
class RecordingScsi final : public ScsiSource {
 public:
  RecordingScsi(ScsiSource const& asked, RecordedScsi& recorded)
      : asked_(asked), recorded_(recorded) {}
  Fact<std::vector<std::uint8_t>> BusNumbers() const override;
  Fact<ScsiBus> Bus(std::uint8_t bus) const override;
  Fact<std::vector<std::uint8_t>> TargetNumbers(std::uint8_t bus) const override;
  Fact<std::string> Inquiry(std::uint8_t bus, std::uint8_t target) const override;

 private:
  ScsiSource const& asked_;
  RecordedScsi& recorded_;
};

}  // namespace machine::capture
