// The folders of a Linux machine: the system domain is the distribution's, the local one the
// administrator's, the user's that of the XDG base directories. By the Filesystem Hierarchy
// Standard 3.0, hier(7) and file-hierarchy(7), and for the desktop by the freedesktop.org rules on
// base directories, user directories, autostart, icon and sound themes and colour profiles.
#include "frameworks/CoreServices/special_folders.h"

namespace {

constexpr DomainSet S = kInSystem, L = kInLocal, U = kInUser;
using enum FolderBase;

constexpr DomainLibrary kLibraries[] = {
    {S, kRoot, "/usr/share"},
    {L, kRoot, "/usr/local/share"},
    {U, kDataHome, ""},
};

constexpr SpecialFolderRow kRows[] = {
    {kSystemFolderType, S, kRoot, "/usr"},
    {kDomainTopLevelFolderType, S, kRoot, "/"},
    {kDomainTopLevelFolderType, L, kRoot, "/usr/local"},
    {kDomainTopLevelFolderType, U, kHome, ""},
    {kUsersFolderType, S | L | U, kRoot, "/home"},
    {kCurrentUserFolderType, S | L | U, kHome, ""},
    {kSharedUserDataFolderType, S | L | U, kRoot, "/srv"},
    {kDesktopFolderType, U, kUserDirectory, "XDG_DESKTOP_DIR"},
    {kDocumentsFolderType, U, kUserDirectory, "XDG_DOCUMENTS_DIR"},

    {kDomainLibraryFolderType, S | L | U, kLibrary, ""},
    {kApplicationSupportFolderType, S | L | U, kLibrary, ""},
    {kApplicationsFolderType, S | L | U, kLibrary, "applications"},
    {kColorSyncProfilesFolderType, S | L | U, kLibrary, "color/icc"},
    {kDocumentationFolderType, S | L | U, kLibrary, "doc"},
    {kFontsFolderType, S | L | U, kLibrary, "fonts"},
    {kHelpFolderType, S | L | U, kLibrary, "help"},
    {kSystemSoundsFolderType, S | L | U, kLibrary, "sounds"},
    {kThemesFolderType, S | L | U, kLibrary, "themes"},

    {kPreferencesFolderType, S, kRoot, "/etc"},
    {kPreferencesFolderType, L, kRoot, "/usr/local/etc"},
    {kPreferencesFolderType, U, kConfigurationHome, ""},
    {kSharedLibrariesFolderType, S, kRoot, "/usr/lib"},
    {kSharedLibrariesFolderType, L, kRoot, "/usr/local/lib"},
    {kSharedLibrariesFolderType, U, kHome, ".local/lib"},
    {kUtilitiesFolderType, S, kRoot, "/usr/bin"},
    {kUtilitiesFolderType, L, kRoot, "/usr/local/bin"},
    {kUtilitiesFolderType, U, kHome, ".local/bin"},

    {kCachedDataFolderType, S | L, kRoot, "/var/cache"},
    {kCachedDataFolderType, U, kCacheHome, ""},
    {kTemporaryFolderType, S | L, kRoot, "/tmp"},
    {kTemporaryFolderType, U, kTemporary, ""},
    {kChewableItemsFolderType, S | L, kRoot, "/var/tmp"},
    // The variable is the user's whatever the domain.
    {kUserSpecificTmpFolderType, S | L | U, kTemporary, ""},

    {kStartupFolderType, S, kRoot, "/etc/xdg/autostart"},
    {kStartupFolderType, U, kConfigurationHome, "autostart"},
    {kStartupItemsDisabledFolderType, S, kRoot, "/etc/xdg/autostart.disabled"},
    {kStartupItemsDisabledFolderType, U, kConfigurationHome, "autostart.disabled"},
    {kShutdownFolderType, S, kRoot, "/usr/lib/systemd/system-shutdown"},
    {kExtensionFolderType, S, kKernelModules, ""},
    {kKernelExtensionsFolderType, S, kKernelModules, ""},

    {kCoreServicesFolderType, S, kRoot, "/usr/lib/systemd"},
    {kDeveloperFolderType, S, kRoot, "/usr/src"},
    {kFrameworksFolderType, S, kRoot, "/usr/lib/GNUstep/Frameworks"},
    {kLocalesFolderType, S, kRoot, "/usr/share/locale"},
    {kPrinterDescriptionFolderType, S, kRoot, "/usr/share/ppd"},
    {kPrintersFolderType, S, kRoot, "/etc/cups"},

    // dpkg's, rpm's since 4.16 and before.
    {kInstallerReceiptsFolderType, S, kRoot, "/var/lib/dpkg/info"},
    {kInstallerReceiptsFolderType, S, kRoot, "/usr/lib/sysimage/rpm"},
    {kInstallerReceiptsFolderType, S, kRoot, "/var/lib/rpm"},

    // glibc's converters, by the directories for libraries of 64 bits, of several architectures
    // (Debian's multiarch tuples) and of one.
    {kTextEncodingsFolderType, S, kRoot, "/usr/lib64/gconv"},
    {kTextEncodingsFolderType, S, kRoot, "/usr/lib/x86_64-linux-gnu/gconv"},
    {kTextEncodingsFolderType, S, kRoot, "/usr/lib/aarch64-linux-gnu/gconv"},
    {kTextEncodingsFolderType, S, kRoot, "/usr/lib/riscv64-linux-gnu/gconv"},
    {kTextEncodingsFolderType, S, kRoot, "/usr/lib/powerpc64le-linux-gnu/gconv"},
    {kTextEncodingsFolderType, S, kRoot, "/usr/lib/s390x-linux-gnu/gconv"},
    {kTextEncodingsFolderType, S, kRoot, "/usr/lib/mips64el-linux-gnuabi64/gconv"},
    {kTextEncodingsFolderType, S, kRoot, "/usr/lib/i386-linux-gnu/gconv"},
    {kTextEncodingsFolderType, S, kRoot, "/usr/lib/arm-linux-gnueabihf/gconv"},
    {kTextEncodingsFolderType, S, kRoot, "/usr/lib/arm-linux-gnueabi/gconv"},
    {kTextEncodingsFolderType, S, kRoot, "/usr/lib/mipsel-linux-gnu/gconv"},
    {kTextEncodingsFolderType, S, kRoot, "/usr/lib/gconv"},
};

}  // namespace

constinit SpecialFolderTable const kLinuxFolders = {kRows, kLibraries};
