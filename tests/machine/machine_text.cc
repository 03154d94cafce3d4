#include "tests/machine/machine_text.h"

#include <iomanip>
#include <sstream>

#include "frameworks/CoreFoundation/recorded_facts.h"
#include "tests/support/big_endian_text.h"

namespace {

using machine::Detail;
using machine::Fact;
using machine::FileSource;
using machine::FileTime;
using machine::Fork;
using machine::Item;
using machine::ItemStatus;
using machine::Links;

std::ostream& operator<<(std::ostream& out, FileTime const& time) {
  return out << time.seconds << '.' << time.nanoseconds;
}

void Print(std::ostream& out, std::string const& text) { out << std::quoted(text); }
template <typename Number>
requires std::integral<Number>
void Print(std::ostream& out, Number number) { out << number; }
void Print(std::ostream& out, machine::Platform platform) { out << static_cast<int>(platform); }
void Print(std::ostream& out, machine::Architecture kind) { out << static_cast<int>(kind); }
void Print(std::ostream& out, machine::Process const& process) {
  out << process.pid << process.name;
}
void Print(std::ostream& out, machine::RecordDictionary const& record) {
  out << *WriteRecordedFacts(record);
}
void Print(std::ostream& out, machine::GestaltResponse const& response) {
  std::visit([&](auto const& value) { Print(out, value); }, response);
}
void Print(std::ostream& out, machine::TimeZone const& zone) {
  out << zone.name << ' ' << zone.rules->posix_text();
  for (std::int64_t at : {-2000000000ll, 0ll, 1700000000ll, 1720000000ll, 9000000000ll}) {
    out << ' ' << zone.rules->At(at).from_utc << '/' << zone.rules->At(at).daylight;
  }
}
void Print(std::ostream& out, ItemStatus const& status) {
  out << static_cast<int>(status.kind) << ' ' << status.is_immutable << ' ' << std::oct
      << status.mode << std::dec << ' ' << status.user << ' ' << status.group << ' ' << status.links
      << ' ' << status.device << ' ' << status.inode << ' ' << status.mount << ' ' << status.bytes
      << ' ' << status.allocated_bytes << ' ' << status.has_birth << ' ' << status.birth << ' '
      << status.modification << ' ' << status.change << ' ' << status.access;
}
void Print(std::ostream& out, Item const& item) {
  Print(out, item.status);
  out << ' ' << item.has_finder_info << ' ' << item.resource_bytes << ' '
      << std::string(item.finder_info.begin(), item.finder_info.end());
}
// Without what other processes change meanwhile.
void Print(std::ostream& out, machine::VolumeSpace const& space) {
  out << space.total_bytes << ' ' << space.block_bytes << ' ' << space.is_read_only;
}
template <typename First, typename Second>
void Print(std::ostream& out, std::pair<First, Second> const& pair) {
  out << pair.first << '=' << pair.second;
}
template <typename Value>
void Print(std::ostream& out, std::vector<Value> const& values) {
  for (Value const& value : values) Print(out << "\n    ", value);
}

template <typename Value>
void Line(std::ostream& out, std::string const& name, Fact<Value> const& fact) {
  out << name << ": ";
  if (fact) {
    Print(out, *fact);
  } else {
    machine::Absence const& absence = fact.absence();
    out << NameOf(absence.reason) << " [" << absence.source << "] [" << absence.where << "] "
        << absence.error;
  }
  out << '\n';
}

void PrintFolder(std::ostream& out, FileSource const& files, std::string const& path) {
  auto const folder = files.OpenFolder(path);
  if (!folder) return Line(out, "  folder", Fact<int>(folder.absence()));
  Line(out, "  folder", Fact<ItemStatus>((*folder)->Status()));
  for (;;) {
    auto const entry = (*folder)->Next(Detail::kAll);
    if (!entry || *entry == nullptr) return;
    Line(out, "    " + std::string((*entry)->name) + ((*entry)->is_companion ? " (companion)" : ""),
         Fact<Item>((*entry)->item));
  }
}

void PrintFork(std::ostream& out, FileSource const& files, std::string const& path, Fork fork) {
  auto const file = files.OpenFork(path, fork, machine::Access::kRead);
  if (!file) return Line(out, "  fork", Fact<int>(file.absence()));
  Line(out, "  size", (*file)->Size());
  Line(out, "  content", machine::ReadWhole(**file, path, 1 << 20));
}

}  // namespace

std::string FactsText(machine::Machine const& machine) {
  std::ostringstream out;
  Line(out, "clock", machine.Clock().MicrosecondsSince1970());
  Line(out, "boot", machine.Clock().BootSecondsSince1970());
  Line(out, "zone", machine.Zone().CurrentZone());
  auto const variables = machine.Environment().VariableNames();
  Line(out, "variables", variables);
  if (variables) {
    for (std::string const& name : *variables) {
      Line(out, "  " + name, machine.Environment().Variable(name));
    }
  }
  Line(out, "no variable", machine.Environment().Variable("NO_SUCH_VARIABLE"));
  Line(out, "host", machine.Names().HostName());
  Line(out, "computer", machine.Names().ComputerName());
  Line(out, "identifier", machine.Names().HostIdentifier());
  Line(out, "platform", machine.System().SystemPlatform());
  Line(out, "version", machine.System().Version());
  Line(out, "kernel", machine.System().KernelRelease());
  Line(out, "user", machine.Users().CurrentUser());
  Line(out, "home", machine.Users().CurrentHome());
  Line(out, "home of ann", machine.Users().HomeOf("ann"));
  Line(out, "console", machine.Sessions().ConsoleUser());
  Line(out, "memory", machine.Memory().PhysicalBytes());
  Line(out, "swap", machine.Memory().SwapBytes());
  Line(out, "processors", machine.Processors().OnlineCount());
  Line(out, "processor", machine.Processors().Kind());
  Line(out, "processor version", machine.Processors().PowerPCVersion());
  Line(out, "frequency", machine.Processors().HighestMegahertz());
  Line(out, "product", machine.Hardware().ProductName());
  Line(out, "USB", machine.Hardware().HasUsb());
  Line(out, "USB release", machine.Hardware().UsbRelease());
  Line(out, "count", machine.Processes().CountProcesses());
  Line(out, "processes", machine.Processes().AllProcesses());
  Line(out, "process", machine.Processes().ProcessWithPid(1));
  for (char const* selector : {"ramm", "sysv", "mach", "mnam", "odd\xC4"}) {
    Line(out, selector, machine.Gestalt().Response(BigEndianNumber(selector)));
  }
  return out.str();
}

std::string FilesText(FileSource const& files, std::vector<std::string> const& paths) {
  std::ostringstream out;
  for (std::string const& path : paths) {
    out << path << '\n';
    Line(out, "  item", files.Describe(path, Links::kFollow));
    Line(out, "  itself", files.Status(path, Links::kKeep));
    Line(out, "  target", files.ReadLink(path));
    Line(out, "  canonical", files.CanonicalFolder(path));
    Line(out, "  space", files.Space(path));
    PrintFolder(out, files, path);
    PrintFork(out, files, path, Fork::kData);
    PrintFork(out, files, path, Fork::kResource);
    Line(out, "  short", files.ReadFile(path, 3));
  }
  for (std::uint32_t number : {0u, 7u, 4000000000u}) {
    Line(out, "user", files.UserName(number));
    Line(out, "group", files.GroupName(number));
  }
  return out.str();
}
