#include "machine/capture/recorder.h"

#include <algorithm>
#include <iterator>

#include "machine/capture/capture_writing.h"
#include "machine/capture/recording.h"
#include "machine/capture/taken_files.h"
#include "machine/system_files.h"

namespace machine {

using namespace capture;

struct Recorder::State : Recording {
  using Recording::Recording;
};

namespace {

// What else tells of the system on whose disk it is.
constexpr char const* kSystemFiles[] = {
    kSystemVersionPath, "/Library/Preferences/SystemConfiguration/preferences.plist",
    "/etc/os-release",  "/usr/lib/os-release",
    kUserListPath,      kGroupListPath,
    kLocalTimePath,     "/etc/timezone",
    "/etc/hostname",    kMachineIdPath,
    "/etc/machine-info"};

void AskUsers(Machine const& machine) {
  machine.Users().CurrentUser();
  if (auto const home = machine.Users().CurrentHome()) {
    machine.Files().Describe(*home, Links::kFollow);
  }
  Fact<std::vector<std::string>> const names = machine.Users().UserNames();
  if (!names) return;
  constexpr std::size_t kMostUsers = 10'000;
  for (std::size_t i = 0; i < std::min(names->size(), kMostUsers); ++i) {
    machine.Users().HomeOf((*names)[i]);
  }
}

// With all that the records have, so that they can be asked for by name later.
void AskDirectory(DirectorySource const& directory) {
  for (std::string_view const type : {kUserRecords, kGroupRecords}) {
    for (DirectoryNode const node : {DirectoryNode::kLocal, DirectoryNode::kSearch}) {
      DirectoryQuery query;
      query.node = node;
      query.type = type;
      query.requested = {std::string(kAllAttributes)};
      directory.Find(query);
    }
  }
}

void AskFiles(FileSource const& files) {
  files.Describe("/", Links::kFollow);
  files.Space("/");
  for (char const* path : kSystemFiles) {
    if (files.Describe(path, Links::kFollow)) files.ReadFile(path, kLargestSystemFile);
  }
}

void AskHardware(Machine const& machine) {
  machine.Memory().PhysicalBytes();
  machine.Memory().SwapBytes();
  machine.Processors().OnlineCount();
  machine.Processors().Kind();
  machine.Processors().PowerPCVersion();
  machine.Processors().HighestMegahertz();
  machine.Hardware().ProductName();
  machine.Hardware().HasUsb();
  machine.Hardware().UsbRelease();
  machine.Components().Components();
  Fact<std::vector<std::uint32_t>> const selectors = machine.Gestalt().Selectors();
  if (!selectors) return;
  for (std::uint32_t const selector : *selectors) machine.Gestalt().Response(selector);
}

void AskScsi(ScsiSource const& scsi) {
  Fact<std::vector<std::uint8_t>> const buses = scsi.BusNumbers();
  if (!buses) return;
  for (std::uint8_t const bus : *buses) {
    scsi.Bus(bus);
    Fact<std::vector<std::uint8_t>> const targets = scsi.TargetNumbers(bus);
    if (!targets) continue;
    for (std::uint8_t const target : *targets) scsi.Inquiry(bus, target);
  }
}

void AskSystem(Machine const& machine) {
  machine.Clock().MicrosecondsSince1970();
  machine.Clock().BootSecondsSince1970();
  machine.Zone().CurrentZone();
  machine.Names().HostName();
  machine.Names().ComputerName();
  machine.Names().HostIdentifier();
  machine.System().SystemPlatform();
  machine.System().Version();
  machine.System().KernelRelease();
  machine.Processes().CountProcesses();
  machine.Processes().AllProcesses();
  machine.Sessions().ConsoleUser();
  Fact<std::vector<std::string>> const names = machine.Environment().VariableNames();
  if (!names) return;
  for (std::string const& name : *names) machine.Environment().Variable(name);
}

}  // namespace

Recorder::Recorder(std::shared_ptr<Machine const> machine, RecordingLimits limits)
    : state_(std::make_shared<State>(std::move(machine), limits)) {}
Recorder::~Recorder() = default;

std::shared_ptr<Machine const> Recorder::RecordingMachine() const {
  return MakeRecordingMachine(state_);
}

void Recorder::RecordEverything() {
  auto const machine = RecordingMachine();
  AskSystem(*machine);
  AskHardware(*machine);
  AskScsi(machine->Scsi());
  AskRegistry(machine->Registry(), *state_->registry);
  AskUsers(*machine);
  AskDirectory(machine->Directory());
  AskVolumes(*machine);
  AskFiles(machine->Files());
}

std::vector<std::string> Recorder::LeftOut() const {
  std::vector<std::string> paths;
  for (auto const& [path, item] : state_->items.items()) {
    for (auto const* content : {&item.content, &item.resource_fork}) {
      bool const is_left_out = *content && !**content && (**content).absence().is_not_recorded();
      if (is_left_out) paths.push_back(path);
    }
  }
  return paths;
}

bool Recorder::HasAllItems() const { return !state_->items.is_full(); }

std::optional<std::size_t> Recorder::TakeFiles(std::string const& pattern) {
  auto const machine = RecordingMachine();
  std::string whole = pattern;
  if (Fact<std::string> const home = machine->Users().CurrentHome();
      home && pattern.starts_with("~/")) {
    whole = *home + pattern.substr(1);
  }
  auto const parts = PartsOfPattern(whole);
  if (!parts) return {};
  TakenFiles taken(machine->Files(), state_->items);
  FindMatches(machine->Files(), *parts, taken);
  std::ranges::copy(taken.refused(), std::back_inserter(state_->taking.refused));
  return taken.count();
}

TakingReport const& Recorder::Taking() const { return state_->taking; }

Fact<Done> Recorder::Write(std::string const& folder, RecordWriter writer,
                           Redacting redacting) const {
  return WriteCapture(*state_, folder, writer, redacting);
}

}  // namespace machine
