// All of Core Services that we have.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/Components.h>
#include <CoreServices/Files.h>
#include <CoreServices/Folders.h>
#include <CoreServices/Gestalt.h>
#include <CoreServices/MacMemory.h>
#include <CoreServices/MacTypes.h>
#include <CoreServices/MachineName.h>
#include <CoreServices/Multiprocessing.h>
#include <CoreServices/SCSI.h>
#include <CoreServices/TextEncodingConverter.h>
#include <CoreServices/Volumes.h>
