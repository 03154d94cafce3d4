#include "inspectors/files/special_items.h"

#include "frame/prop.h"
#include "inspectors/files/special_item_iterator.h"

namespace {

// The folders of the enabled items, then of the disabled ones.
using Extensions = SpecialItemIterator<kExtensionFolderType, kExtensionDisabledFolderType>;
using Panels = SpecialItemIterator<kControlPanelFolderType, kControlPanelDisabledFolderType>;
using Startup = SpecialItemIterator<kStartupFolderType, kStartupItemsDisabledFolderType>;
using Shutdown = SpecialItemIterator<kShutdownFolderType, kShutdownItemsDisabledFolderType>;
using NamedExtensions =
    NamedSpecialItemIterator<kExtensionFolderType, kExtensionDisabledFolderType>;
using NamedPanels =
    NamedSpecialItemIterator<kControlPanelFolderType, kControlPanelDisabledFolderType>;
using NamedStartup = NamedSpecialItemIterator<kStartupFolderType, kStartupItemsDisabledFolderType>;
using NamedShutdown =
    NamedSpecialItemIterator<kShutdownFolderType, kShutdownItemsDisabledFolderType>;

}  // namespace

EnableableFile Neex(inspector_string const& name) {
  return {special_file<kExtensionFolderType>(name), true};
}
EnableableFile Necp(inspector_string const& name) {
  return {special_file<kControlPanelFolderType>(name), true};
}
EnableableFile Nest(inspector_string const& name) {
  return {special_file<kStartupFolderType>(name), true};
}
EnableableFile Nesd(inspector_string const& name) {
  return {special_file<kShutdownFolderType>(name), true};
}
EnableableFile Ndex(inspector_string const& name) {
  return {special_file<kExtensionDisabledFolderType>(name), false};
}
EnableableFile Ndcp(inspector_string const& name) {
  return {special_file<kControlPanelDisabledFolderType>(name), false};
}
EnableableFile Ndst(inspector_string const& name) {
  return {special_file<kStartupItemsDisabledFolderType>(name), false};
}
EnableableFile Ndsd(inspector_string const& name) {
  return {special_file<kShutdownItemsDisabledFolderType>(name), false};
}

namespace {

// `Prop` would take an inherited member for one of the base, which cannot be constructed.
template <class Iterator>
using Step = EnableableFile (Iterator::*)();

template <class Iterator>
struct AllItems : Prop {
  AllItems(char const* singular, char const* plural)
      : Prop(singular, plural, Step<Iterator>(&Iterator::First), Step<Iterator>(&Iterator::Next),
             nullptr) {}
};

template <class Iterator>
struct EnabledItems : Prop {
  EnabledItems(char const* singular, char const* plural)
      : Prop(singular, plural, Step<Iterator>(&Iterator::FirstEnabled),
             Step<Iterator>(&Iterator::NextEnabled), nullptr) {}
};

template <class Iterator>
struct DisabledItems : Prop {
  DisabledItems(char const* singular, char const* plural)
      : Prop(singular, plural, Step<Iterator>(&Iterator::FirstDisabled),
             Step<Iterator>(&Iterator::NextDisabled), nullptr) {}
};

template <class Iterator>
struct NamedItems : Prop {
  NamedItems(char const* singular, char const* plural)
      : Prop(singular, plural, &Iterator::First, &Iterator::Next, nullptr) {}
};

AllItems<Extensions> extensions("extension", "extensions");
AllItems<Panels> panels("control panel", "control panels");
AllItems<Startup> startup_items("startup item", "startup items");
AllItems<Shutdown> shutdown_items("shutdown item", "shutdown items");

EnabledItems<Extensions> enabled_extensions("enabled extension", "enabled extensions");
EnabledItems<Panels> enabled_panels("enabled control panel", "enabled control panels");
EnabledItems<Startup> enabled_startup_items("enabled startup item", "enabled startup items");
EnabledItems<Shutdown> enabled_shutdown_items("enabled shutdown item", "enabled shutdown items");

DisabledItems<Extensions> disabled_extensions("disabled extension", "disabled extensions");
DisabledItems<Panels> disabled_panels("disabled control panel", "disabled control panels");
DisabledItems<Startup> disabled_startup_items("disabled startup item", "disabled startup items");
DisabledItems<Shutdown> disabled_shutdown_items("disabled shutdown item",
                                                "disabled shutdown items");

NamedItems<NamedExtensions> named_extensions("extension", "extensions");
NamedItems<NamedPanels> named_panels("control panel", "control panels");
NamedItems<NamedStartup> named_startup_items("startup item", "startup items");
NamedItems<NamedShutdown> named_shutdown_items("shutdown item", "shutdown items");

Prop enabled_extension("enabled extension", "enabled extensions", Neex, nullptr);
Prop enabled_panel("enabled control panel", "enabled control panels", Necp, nullptr);
Prop enabled_startup_item("enabled startup item", "enabled startup items", Nest, nullptr);
Prop enabled_shutdown_item("enabled shutdown item", "enabled shutdown items", Nesd, nullptr);
Prop disabled_extension("disabled extension", "disabled extensions", Ndex, nullptr);
Prop disabled_panel("disabled control panel", "disabled control panels", Ndcp, nullptr);
Prop disabled_startup_item("disabled startup item", "disabled startup items", Ndst, nullptr);
Prop disabled_shutdown_item("disabled shutdown item", "disabled shutdown items", Ndsd, nullptr);

}  // namespace
