// The paths of files and folders, in both notations. Unlike text of property lists they follow the
// report encoding.
#pragma once

#include "evaluator/plugin/values.h"
#include "frame/of.h"

class filesystem_object;

// `CFURLCopyFileSystemPathFailed` for what has no path in that notation.
inspector_string HFSPathOfObject(Of, filesystem_object const& object);
inspector_string POSIXPathOfObject(Of, filesystem_object const& object);
// The POSIX path.
inspector_string AsString(filesystem_object const& object);
