#pragma once

namespace BSD {

// Names that are not taken yet, on the machine in use: the six X at the end of `path` are replaced
// and an empty file (of mode 0600) or folder (0700) made there. Where that fails, `errno` says why:
// EROFS on a machine whose files are not changed.

// The file, open for writing, which the caller closes; or -1.
__attribute__((visibility("default"))) int mkstemp(char* path);
// `path`, or null.
__attribute__((visibility("default"))) char* mkdtemp(char* path);

}  // namespace BSD
