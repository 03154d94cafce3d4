// What the file system says about an item itself; of a link, about the link.
#include <string>

#include "frame/registration.h"
#include "portable_inspectors/checked_arithmetic.h"
#include "portable_inspectors/filesystem_object.h"
#include "portable_inspectors/machine_files.h"
#include "portable_inspectors/moment.h"
#include "portable_inspectors/text.h"

namespace {

using Object = filesystem_object;
using Text = inspector_string;

std::string const& PathOf(Object const& object) {
  if (object.Path().empty()) throw NoSuchObject();
  return object.Path();
}

// Asked of the machine and not of the object's item, which keeps times in 65536ths of a second.
machine::ItemStatus StatusOf(Object const& object) {
  return OrNoSuchObject(MachineFiles().Status(PathOf(object), machine::Links::kKeep));
}

Text NameOf(Object const& object) { return CopyText(NameInPath(PathOf(object))); }

Text LocationOf(Object const& object) {
  if (PathOf(object) == "/") throw NoSuchObject();
  return CopyText(ParentOfPath(object.Path()));
}

template <machine::FileTime machine::ItemStatus::*time>
moment TimeOf(Object const& object) {
  machine::FileTime const found = StatusOf(object).*time;
  return moment(CheckedAdd<TimeOverflow>(
      CheckedMultiply<TimeOverflow>(found.seconds, second_of().Microseconds()),
      found.nanoseconds / 1000));
}

moment BirthTimeOf(Object const& object) {
  if (StatusOf(object).has_birth) return TimeOf<&machine::ItemStatus::birth>(object);
  machine::Announce(object.Path() + ": time of birth", machine::Outcome::kNotSupported);
  throw NoSuchObject();
}

Text OwnerOf(Object const& object) {
  return CopyText(OrNoSuchObject(MachineFiles().UserName(StatusOf(object).user)));
}
Text GroupOf(Object const& object) {
  return CopyText(OrNoSuchObject(MachineFiles().GroupName(StatusOf(object).group)));
}
integer OwnerIdOf(Object const& object) { return StatusOf(object).user; }
integer GroupIdOf(Object const& object) { return StatusOf(object).group; }

constexpr unsigned kTypeBits = 0170000;

char TypeLetter(unsigned mode) {
  switch (mode & kTypeBits) {
    case 0010000:
      return 'p';
    case 0020000:
      return 'c';
    case 0040000:
      return 'd';
    case 0060000:
      return 'b';
    case 0100000:
      return '-';
    case 0120000:
      return 'l';
    case 0140000:
      return 's';
    default:
      return '?';
  }
}

// The permission bits with set-user, set-group and sticky bit.
integer ModeOf(Object const& object) { return StatusOf(object).mode & ~kTypeBits; }

// As a long listing of files shows it, "-rwsr-xr-x".
Text SymbolicModeOf(Object const& object) {
  unsigned const mode = StatusOf(object).mode;
  std::string text{TypeLetter(mode)};
  for (unsigned bit = 8; bit + 1 > 0; --bit) {
    text += (mode >> bit & 1) != 0 ? "xwr"[bit % 3] : '-';
  }
  struct Special {
    unsigned bit;
    std::size_t place;  // of the execution right that it replaces
    char with_right, without_right;
  };
  for (Special const& special :
       {Special{04000, 3, 's', 'S'}, {02000, 6, 's', 'S'}, {01000, 9, 't', 'T'}}) {
    if ((mode & special.bit) == 0) continue;
    char& right = text[special.place];
    right = right == 'x' ? special.with_right : special.without_right;
  }
  return CopyText(text);
}

Text LinkTargetOf(Object const& object) {
  return CopyText(OrNoSuchObject(MachineFiles().ReadLink(PathOf(object))));
}

Property<Object, Text> name("name", "names", NameOf, nullptr);
Property<Object, Text> location("location", "locations", LocationOf, nullptr);
Property<Object, moment> modification_time("modification time", "modification times",
                                           TimeOf<&machine::ItemStatus::modification>, nullptr);
Property<Object, moment> access_time("access time", "access times",
                                     TimeOf<&machine::ItemStatus::access>, nullptr);
Property<Object, moment> change_time("change time", "change times",
                                     TimeOf<&machine::ItemStatus::change>, nullptr);
Property<Object, moment> birth_time("birth time", "birth times", BirthTimeOf, nullptr);
Property<Object, moment> creation_time("creation time", "creation times", BirthTimeOf, nullptr);
Property<Object, Text> owner("owner", "owners", OwnerOf, nullptr);
Property<Object, Text> group("group", "groups", GroupOf, nullptr);
Property<Object, integer> owner_id("owner id", "owner ids", OwnerIdOf, nullptr);
Property<Object, integer> group_id("group id", "group ids", GroupIdOf, nullptr);
Property<Object, integer> mode("mode", "modes", ModeOf, nullptr);
Property<Object, Text> symbolic_mode("symbolic mode", "symbolic modes", SymbolicModeOf, nullptr);
Property<Object, Text> link_target("link target", "link targets", LinkTargetOf, nullptr);

}  // namespace
