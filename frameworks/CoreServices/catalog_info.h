// Catalogue information from what a machine tells of an item, and back.
#pragma once

#include <CoreServices/Files.h>

#include <string>

#include "machine/files.h"

// What has to be asked for the fields of a bitmap.
machine::Detail DetailFor(FSCatalogInfoBitmap fields);

// The fields of the bitmap; `path` for those that need further questions.
FSCatalogInfo MakeCatalogInfo(FSCatalogInfoBitmap fields, FSRef const& ref,
                              machine::Item const& item, std::string const& path);

UTCDateTime MakeDateTime(machine::FileTime const& time);
machine::FileTime TimeOf(UTCDateTime const& date);

// The disk's numbers are big-endian, those of the records in the machine's order. The same
// exchange leads both ways.
machine::FinderInfo ExchangeFinderInfo(machine::FinderInfo const& info, machine::ItemKind kind);

// The reference number of the volume that an item lies on. It stays with the volume for the life
// of the process.
FSVolumeRefNum VolumeOf(machine::ItemStatus const& status, std::string const& path);
