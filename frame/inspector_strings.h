// How text reaches the evaluator.
//
// Bytes handed over must live in evaluator memory or in static storage. Where memory is short,
// `Allocate_Inspector_Memory` throws; it is never null.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include "evaluator/plugin/values.h"
#include "portable/const_data.h"
#include "portable/rope.h"

// The text in the report encoding (`GetReportEncodingFromInspector`), "?" for what that cannot
// represent. An encoding that has a byte-order mark puts it in front: what reads the report wants
// it there.
inspector_string AsInspectorString(CFStringRef text);

// The same bytes, not copied.
inspector_string AsInspectorString(ConstData bytes);

inspector_string CopyToInspectorString(ConstData bytes);
// The pieces joined in one block.
inspector_string CopyToInspectorString(ConstDataRopeReference pieces);
