#include "tests/machine/machine_text.h"

#include <gtest/gtest.h>

#include <sstream>
#include <tuple>

#include "tests/support/big_endian_text.h"

// So that they can be printed like all that holds them.
namespace machine {

using testing::PrintToString;

void PrintTo(FileTime const& time, std::ostream* out) {
  *out << time.seconds << '.' << time.nanoseconds;
}
void PrintTo(Process const& process, std::ostream* out) { *out << process.pid << process.name; }
void PrintTo(RecordDictionary const& record, std::ostream* out) { *out << TextOf(record); }
void PrintTo(TimeZone const& zone, std::ostream* out) {
  *out << zone.name << ' ' << zone.rules->posix_text();
  for (std::int64_t at : {-2000000000ll, 0ll, 1700000000ll, 1720000000ll, 9000000000ll}) {
    *out << ' ' << zone.rules->At(at).from_utc << '/' << zone.rules->At(at).daylight;
  }
}
void PrintTo(ItemStatus const& it, std::ostream* out) {
  auto const kind = static_cast<int>(it.kind);
  *out << PrintToString(std::tuple(kind, it.is_immutable, it.has_birth, it.mode, it.user, it.group))
       << PrintToString(std::tuple(it.links, it.device, it.inode, it.mount, it.bytes))
       << PrintToString(std::tuple(it.allocated_bytes, it.birth, it.modification, it.change))
       << PrintToString(it.access);
}
void PrintTo(Item const& item, std::ostream* out) {
  *out << PrintToString(item.status) << item.has_finder_info << ' ' << item.resource_bytes << ' '
       << PrintToString(item.finder_info);
}
// Without what other processes change meanwhile.
void PrintTo(VolumeSpace const& space, std::ostream* out) {
  *out << space.total_bytes << ' ' << space.block_bytes << ' ' << space.is_read_only;
}
void PrintTo(Absence const& absence, std::ostream* out) {
  *out << NameOf(absence.reason) << " [" << absence.source << "] [" << absence.where << "] "
       << absence.error;
}
template <typename Value>
void PrintTo(Fact<Value> const& fact, std::ostream* out) {
  *out << (fact ? PrintToString(*fact) : PrintToString(fact.absence()));
}

}  // namespace machine

namespace {

using machine::FileSource;
using machine::Fork;

template <typename Value>
void Line(std::ostream& out, std::string const& name, Value const& value) {
  out << name << ": " << testing::PrintToString(value) << '\n';
}

void PrintFolder(std::ostream& out, FileSource const& files, std::string const& path) {
  auto const folder = files.OpenFolder(path);
  if (!folder) return Line(out, "  folder", folder.absence());
  Line(out, "  folder", (*folder)->Status());
  for (;;) {
    auto const entry = (*folder)->Next(machine::Detail::kAll);
    if (!entry || *entry == nullptr) return;
    Line(out, "    " + std::string((*entry)->name) + ((*entry)->is_companion ? " (companion)" : ""),
         (*entry)->item);
  }
}

void PrintFork(std::ostream& out, FileSource const& files, std::string const& path, Fork fork) {
  auto const file = files.OpenFork(path, fork, machine::Access::kRead);
  if (!file) return Line(out, "  fork", file.absence());
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
  for (std::string const& name : variables ? *variables : std::vector<std::string>()) {
    Line(out, "  " + name, machine.Environment().Variable(name));
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
    Line(out, "  item", files.Describe(path, machine::Links::kFollow));
    Line(out, "  itself", files.Status(path, machine::Links::kKeep));
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
