// The File Manager over the files of the machine in use. Names on disk are bytes, UTF-8 as a rule;
// in an HFSUniStr255 they are UTF-16, where a byte b that is no UTF-8 stands as U+DC00+b and comes
// back as that byte. A name holds no "/" and no NUL; "." and ".." are bad names. Links are items of
// their own and not followed, except by `FSPathMakeRef`.
//
// Every call returns `noErr` or one of the codes below and then leaves its results alone. A null
// result is not wanted.
#pragma once

#include <CoreServices/MacTypes.h>

enum : OSErr {
  nsvErr = -35,    // no such volume
  ioErr = -36,     // the system failed to read or write
  bdNamErr = -37,  // empty, too long or not allowed as a name
  fnOpnErr = -38,  // no such open fork
  eofErr = -39,    // end of file
  posErr = -40,    // before the start
  tmfoErr = -42,   // too many files open
  fnfErr = -43,    // the item does not exist (any more)
  wPrErr = -44,    // write-protected volume
  fLckdErr = -45,  // the item is locked
  vLckdErr = -46,  // the volume, or the whole machine, is read-only
  fBsyErr = -47,   // the folder is not empty, or the item in use
  dupFNErr = -48,  // the name exists
  opWrErr = -49,   // already open for writing, or running
  paramErr = -50,
  rfNumErr = -51,   // no such open fork
  permErr = -54,    // opening a locked file, or a resource fork, for writing
  wrPermErr = -61,  // the fork is open for reading only
  dskFulErr = -34,
  dirNFErr = -120,      // a folder on the way does not exist
  badMovErr = -122,     // into itself or its own contents
  notAFileErr = -1302,  // a folder, device or pipe where a file is needed
  diffVolErr = -1303,   // the two places are on different volumes
  errFSBadForkName = -1402,
  errFSNotAFolder = -1407,
  errFSBadPosMode = -1412,
  errFSNoMoreItems = -1417,
  errFSBadItemCount = -1418,
  errFSRefsDifferent = -1420,
  errFSBadIteratorFlags = -1422,
  errFSIteratorNotFound = -1423,
  afpAccessDenied = -5000,
};

using FSVolumeRefNum = SInt16;
using FSIORefNum = SInt16;
using FSIterator = struct OpaqueFSIterator*;

// Not the classic size: every name on disk fits.
using StrFileName = Str255;

// An item: its folder's number (see `FSSpec::parID`), its name there and its identity. Plain data,
// zeros name no item. It stays good while that very item stays in its place, and when the item or a
// folder above it is moved by `FSMoveRenameObjectUnicode`, for the items inside.
struct FSRef {
  UInt64 device;
  UInt64 inode;
  UInt32 folder;
  char name[256];  // bytes as on disk, NUL-terminated; empty for the root
};

enum : UInt32 { fsRtParID = 1, fsRtDirID = 2 };

// An item by place: it may not exist yet. `parID` is a number given to a folder for the life of the
// process. The name's bytes are those on disk, the length in front.
struct FSSpec {
  FSVolumeRefNum vRefNum;
  UInt32 parID;
  StrFileName name;
};

struct HFSUniStr255 {
  UInt16 length;
  UniChar unicode[255];
};

// Seconds since 1904-01-01T00:00:00Z, the fraction in 1/65536 of one. Not packed as the classic
// record is: nothing on disk has this form, and every field may be referred to.
struct UTCDateTime {
  UInt16 highSeconds;
  UInt32 lowSeconds;
  UInt16 fraction;
};

struct FSPermissionInfo {
  UInt32 userID;
  UInt32 groupID;
  UInt8 reserved1;
  UInt8 userAccess;
  UInt16 mode;  // type and permission bits
  UInt32 reserved2;
};

using FSCatalogInfoBitmap = UInt32;
enum : FSCatalogInfoBitmap {
  kFSCatInfoNone = 0x00000000,
  kFSCatInfoTextEncoding = 0x00000001,
  kFSCatInfoNodeFlags = 0x00000002,
  kFSCatInfoVolume = 0x00000004,
  kFSCatInfoParentDirID = 0x00000008,
  kFSCatInfoNodeID = 0x00000010,
  kFSCatInfoCreateDate = 0x00000020,
  kFSCatInfoContentMod = 0x00000040,
  kFSCatInfoAttrMod = 0x00000080,
  kFSCatInfoAccessDate = 0x00000100,
  kFSCatInfoBackupDate = 0x00000200,
  kFSCatInfoAllDates = 0x000003E0,
  kFSCatInfoPermissions = 0x00000400,
  kFSCatInfoFinderInfo = 0x00000800,
  kFSCatInfoFinderXInfo = 0x00001000,
  kFSCatInfoValence = 0x00002000,
  kFSCatInfoDataSizes = 0x00004000,
  kFSCatInfoRsrcSizes = 0x00008000,
  kFSCatInfoSharingFlags = 0x00010000,
  kFSCatInfoUserPrivs = 0x00020000,
  kFSCatInfoUserAccess = 0x00080000,
  kFSCatInfoSetOwnership = 0x00100000,
  kFSCatInfoGettableInfo = 0x0003FFFF,
  kFSCatInfoSettableInfo = 0x00001FE3,
};

enum : UInt16 {
  kFSNodeLockedMask = 0x0001,
  kFSNodeIsDirectoryMask = 0x0010,
};

// Finder flags.
enum : UInt16 {
  kIsStationery = 0x0800,
  kNameLocked = 0x1000,
  kHasBundle = 0x2000,
  kIsInvisible = 0x4000,
  kIsAlias = 0x8000,
};

struct Point {
  SInt16 v, h;
};
struct Rect {
  SInt16 top, left, bottom, right;
};

// What `finderInfo` holds of a file and of a folder, in the machine's byte order. The flags lie at
// the same place in both.
struct FileInfo {
  OSType fileType;
  OSType fileCreator;
  UInt16 finderFlags;
  Point location;
  UInt16 reservedField;
};
struct FolderInfo {
  Rect windowBounds;
  UInt16 finderFlags;
  Point location;
  UInt16 reservedField;
};
// What `extFinderInfo` holds of either.
struct ExtendedFileInfo {
  SInt16 reserved1[4];
  UInt16 extendedFinderFlags;
  SInt16 reserved2;
  SInt32 putAwayFolderID;
};
static_assert(sizeof(FileInfo) == 16 && sizeof(FolderInfo) == 16 && sizeof(ExtendedFileInfo) == 16);

// `FSGetCatalogInfo` fills in what its bitmap names and zeroes the rest.
struct FSCatalogInfo {
  UInt16 nodeFlags;
  FSVolumeRefNum volume;
  UInt32 parentDirID;
  UInt32 nodeID;  // of a folder the number that its items have as `parentDirID`, else of the inode
  UInt8 sharingFlags;    // 0
  UInt8 userPrivileges;  // 0
  UInt8 reserved1;
  UInt8 reserved2;
  UTCDateTime createDate;        // zeros where the file system keeps none
  UTCDateTime contentModDate;    // of the content
  UTCDateTime attributeModDate;  // of anything, the kernel's time of change
  UTCDateTime accessDate;
  UTCDateTime backupDate;  // zeros
  FSPermissionInfo permissions;
  UInt8 finderInfo[16];
  UInt8 extFinderInfo[16];
  UInt64 dataLogicalSize;  // of a folder 0
  UInt64 dataPhysicalSize;
  UInt64 rsrcLogicalSize;
  UInt64 rsrcPhysicalSize;
  UInt32 valence;                 // entries of a folder
  TextEncoding textEncodingHint;  // 0
};

// --- Finding items

CF_EXPORT OSErr FSGetCatalogInfo(FSRef const* ref, FSCatalogInfoBitmap whichInfo,
                                 FSCatalogInfo* catalogInfo, HFSUniStr255* outName, FSSpec* fsSpec,
                                 FSRef* parentRef);
// `noErr` for the same item, else `errFSRefsDifferent`. Asks nothing of the machine.
CF_EXPORT OSErr FSCompareFSRefs(FSRef const* ref1, FSRef const* ref2);
CF_EXPORT OSErr FSMakeFSRefUnicode(FSRef const* parentRef, UniCharCount nameLength,
                                   UniChar const* name, TextEncoding textEncodingHint,
                                   FSRef* newRef);
CF_EXPORT OSErr FSpMakeFSRef(FSSpec const* source, FSRef* newRef);

// POSIX paths, bytes with a NUL at the end, absolute.
using FSPathMakeRefOptions = OptionBits;
enum : FSPathMakeRefOptions {
  kFSPathMakeRefDefaultOptions = 0,
  kFSPathMakeRefDoNotFollowLeafSymlink = 0x01,
};
CF_EXPORT OSStatus FSPathMakeRef(UInt8 const* path, FSRef* ref, Boolean* isDirectory);
CF_EXPORT OSStatus FSPathMakeRefWithOptions(UInt8 const* path, FSPathMakeRefOptions options,
                                            FSRef* ref, Boolean* isDirectory);
// Without links in it. `maxPathSize` counts the NUL; a longer path is `bdNamErr`.
CF_EXPORT OSStatus FSRefMakePath(FSRef const* ref, UInt8* path, UInt32 maxPathSize);

// --- Reading folders

using FSIteratorFlags = OptionBits;
enum : FSIteratorFlags { kFSIterateFlat = 0 };

// The caller closes it. Only flat iteration.
CF_EXPORT OSErr FSOpenIterator(FSRef const* container, FSIteratorFlags iteratorFlags,
                               FSIterator* iterator);
CF_EXPORT OSErr FSCloseIterator(FSIterator iterator);
// The next items, at most `maximumObjects`, in the folder's order; `errFSNoMoreItems`, and then
// none, after the last. AppleDouble files are left out where their item is there: they are part of
// it. `containerChanged` is always false.
CF_EXPORT OSErr FSGetCatalogInfoBulk(FSIterator iterator, ItemCount maximumObjects,
                                     ItemCount* actualObjects, Boolean* containerChanged,
                                     FSCatalogInfoBitmap whichInfo, FSCatalogInfo* catalogInfos,
                                     FSRef* refs, FSSpec* fs_specs, HFSUniStr255* names);

// --- Changing items. A machine that is not the running one answers `vLckdErr`.

// Of `catalogInfo` (may be null), what `FSSetCatalogInfo` can set.
CF_EXPORT OSErr FSCreateFileUnicode(FSRef const* parentRef, UniCharCount nameLength,
                                    UniChar const* name, FSCatalogInfoBitmap whichInfo,
                                    FSCatalogInfo const* catalogInfo, FSRef* newRef,
                                    FSSpec* newSpec);
CF_EXPORT OSErr FSCreateDirectoryUnicode(FSRef const* parentRef, UniCharCount nameLength,
                                         UniChar const* name, FSCatalogInfoBitmap whichInfo,
                                         FSCatalogInfo const* catalogInfo, FSRef* newRef,
                                         FSSpec* newSpec, UInt32* newDirID);
// One file or empty folder. A locked item is `fLckdErr`.
CF_EXPORT OSErr FSDeleteObject(FSRef const* ref);
// Into a folder of the same volume under a name, in one step.
CF_EXPORT OSErr FSMoveRenameObjectUnicode(FSRef const* ref, FSRef const* newParentRef,
                                          UniCharCount nameLength, UniChar const* name,
                                          TextEncoding textEncodingHint, FSRef* newRef);
// A copy in a folder under a name, folders with all that is in them: both forks, Finder
// information, permissions and times. What could not be copied stops it; of a folder, the items
// copied before are left.
CF_EXPORT OSErr FSCopyObject(FSRef const* ref, FSRef const* newParentRef, UniCharCount nameLength,
                             UniChar const* name, FSRef* newRef);
// Sets the locked flag (kFSCatInfoNodeFlags), Finder information, the permission bits of the mode,
// the times of content and access. The others named are left alone.
CF_EXPORT OSErr FSSetCatalogInfo(FSRef const* ref, FSCatalogInfoBitmap whichInfo,
                                 FSCatalogInfo const* catalogInfo);
// Puts `replacementObject` in the place of `originalObject` in one step; mode, owner, Finder
// information and resource fork of the place stay. The last four must be null or zero, as should
// `newName`.
CF_EXPORT OSStatus FSReplaceObject(FSRef const* originalObject, FSRef const* replacementObject,
                                   CFStringRef newName, CFStringRef temporaryName,
                                   FSRef const* temporaryDirectory, OptionBits flags,
                                   FSRef* resultObject);

// --- Forks

enum : SInt8 { fsCurPerm = 0, fsRdPerm = 1, fsWrPerm = 2, fsRdWrPerm = 3, fsRdWrShPerm = 4 };
enum : UInt16 { fsAtMark = 0, fsFromStart = 1, fsFromLEOF = 2, fsFromMark = 3 };

// The names of the two forks: "" and "RESOURCE_FORK".
CF_EXPORT OSErr FSGetDataForkName(HFSUniStr255* dataForkName);
CF_EXPORT OSErr FSGetResourceForkName(HFSUniStr255* resourceForkName);

// The caller closes it. A link is followed. A file has both forks, a resource fork is read only.
CF_EXPORT OSErr FSOpenFork(FSRef const* ref, UniCharCount forkNameLength, UniChar const* forkName,
                           SInt8 permissions, FSIORefNum* forkRefNum);
// `actualCount` is set also with `eofErr`, which says that fewer bytes came than were asked for.
CF_EXPORT OSErr FSReadFork(FSIORefNum forkRefNum, UInt16 positionMode, SInt64 positionOffset,
                           ByteCount requestCount, void* buffer, ByteCount* actualCount);
CF_EXPORT OSErr FSWriteFork(FSIORefNum forkRefNum, UInt16 positionMode, SInt64 positionOffset,
                            ByteCount requestCount, void const* buffer, ByteCount* actualCount);
CF_EXPORT OSErr FSGetForkPosition(FSIORefNum forkRefNum, SInt64* position);
CF_EXPORT OSErr FSSetForkPosition(FSIORefNum forkRefNum, UInt16 positionMode,
                                  SInt64 positionOffset);
CF_EXPORT OSErr FSGetForkSize(FSIORefNum forkRefNum, SInt64* forkSize);
CF_EXPORT OSErr FSSetForkSize(FSIORefNum forkRefNum, UInt16 positionMode, SInt64 positionOffset);
// Returns when the content is on the disk.
CF_EXPORT OSErr FSFlushFork(FSIORefNum forkRefNum);
CF_EXPORT OSErr FSCloseFork(FSIORefNum forkRefNum);
