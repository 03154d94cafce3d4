// The kernel's process table and boot time by the published names and numbers, answered by the
// machine in use. In a namespace, since libc has the same names.
#pragma once

#include <CoreFoundation/CFBase.h>

namespace BSD {

inline constexpr int CTL_KERN = 1;
inline constexpr int KERN_PROC = 14;
inline constexpr int KERN_BOOTTIME = 21;
inline constexpr int KERN_PROC_ALL = 0;
inline constexpr int KERN_PROC_PID = 1;
inline constexpr std::size_t MAXCOMLEN = 16;

// At most 16 bytes of any kind, then NUL.
struct extern_proc {
  std::int32_t p_pid = 0;
  char p_comm[MAXCOMLEN + 1] = {};
};

struct kinfo_proc {
  extern_proc kp_proc;
};

struct timeval {
  std::int64_t tv_sec = 0;
  std::int64_t tv_usec = 0;
};

// 0, or -1 with `errno` set and nothing written: ENOENT for a name that is not kept here, EPERM for
// an attempt to set one, ENOMEM where the buffer is too small, ESRCH for a process number that
// names none, EACCES, EIO, ENOTSUP or ETIMEDOUT where the machine does not tell.
//
// A null `oldp` asks for the size needed. For the whole table that counts the processes, reads
// nothing of them and adds some for those that start meanwhile; `*oldlenp` is then an upper
// estimate, and after the list itself the bytes really written.
__attribute__((visibility("default"))) int sysctl(int const* name, unsigned namelen, void* oldp,
                                                  std::size_t* oldlenp, void const* newp,
                                                  std::size_t newlen);

}  // namespace BSD
