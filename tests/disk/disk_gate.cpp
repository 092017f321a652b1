// SPDX-License-Identifier: GPL-3.0-or-later
// Linked before the C library: what a thread asks of the disk waits for its turn first.
#include "disk_gate.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>

namespace {

thread_local DiskGate* t_gate = nullptr;

DiskFate pass(const char* call) {
    // What the gate itself asks of the disk waits for nobody.
    DiskGate* const gate = t_gate;
    if (gate == nullptr) return DiskFate::goes;
    t_gate = nullptr;
    const int kept = errno;
    const DiskFate fate = gate->pass(call);
    errno = kept;
    t_gate = gate;
    return fate;
}

int open_at(int at, const char* path, int flags, mode_t mode) {
    pass("open");
    return static_cast<int>(syscall(SYS_openat, at, path, flags, mode));
}

int call_in_turn(const char* name, long call, long one, long two = 0, long three = 0, long four = 0,
                 long five = 0) {
    pass(name);
    return static_cast<int>(syscall(call, one, two, three, four, five));
}

long as_long(const char* path) {
    return reinterpret_cast<long>(path);
}

}  // namespace

extern "C" {

void set_disk_gate(DiskGate* gate) {
    t_gate = gate;
}

#define M47_OPEN(name)                               \
    int name(const char* path, int flags, ...) {     \
        std::va_list rest;                           \
        va_start(rest, flags);                       \
        const mode_t mode = va_arg(rest, mode_t);    \
        va_end(rest);                                \
        return open_at(AT_FDCWD, path, flags, mode); \
    }
M47_OPEN(open)
M47_OPEN(open64)

int openat(int at, const char* path, int flags, ...) {
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = va_arg(rest, mode_t);
    va_end(rest);
    return open_at(at, path, flags, mode);
}

ssize_t write(int descriptor, const void* bytes, size_t length) {
    const DiskFate fate = pass("write");
    if (fate == DiskFate::full) {
        errno = ENOSPC;
        return -1;
    }
    const size_t part = fate == DiskFate::halved && length > 1 ? length / 2 : length;
    return syscall(SYS_write, descriptor, bytes, part);
}
ssize_t read(int descriptor, void* bytes, size_t length) {
    pass("read");
    return syscall(SYS_read, descriptor, bytes, length);
}

int fsync(int descriptor) {
    return call_in_turn("fsync", SYS_fsync, descriptor);
}
int fdatasync(int descriptor) {
    return call_in_turn("fdatasync", SYS_fdatasync, descriptor);
}
int flock(int descriptor, int operation) noexcept {
    return call_in_turn("flock", SYS_flock, descriptor, operation);
}
// Whoever sleeps until the other one is done only gives its turn away.
int nanosleep(const timespec* time, timespec* rest) {
    if (t_gate == nullptr) return static_cast<int>(syscall(SYS_nanosleep, time, rest));
    pass("sleep");
    return 0;
}
int clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* rest) {
    if (t_gate == nullptr)
        return static_cast<int>(-syscall(SYS_clock_nanosleep, clock, flags, time, rest));
    pass("sleep");
    return 0;
}
int ftruncate(int descriptor, off_t length) noexcept {
    return call_in_turn("ftruncate", SYS_ftruncate, descriptor, length);
}
int ftruncate64(int descriptor, off_t length) noexcept {
    return ftruncate(descriptor, length);
}
int truncate(const char* path, off_t length) noexcept {
    return call_in_turn("truncate", SYS_truncate, as_long(path), length);
}
int rename(const char* from, const char* to) noexcept {
    return call_in_turn("rename", SYS_renameat2, AT_FDCWD, as_long(from), AT_FDCWD, as_long(to));
}
int renameat2(int from_at, const char* from, int to_at, const char* to, unsigned flags) noexcept {
    return call_in_turn("rename", SYS_renameat2, from_at, as_long(from), to_at, as_long(to), flags);
}
int link(const char* from, const char* to) noexcept {
    return call_in_turn("link", SYS_linkat, AT_FDCWD, as_long(from), AT_FDCWD, as_long(to));
}
int unlink(const char* path) noexcept {
    return call_in_turn("unlink", SYS_unlinkat, AT_FDCWD, as_long(path));
}
int close(int descriptor) {
    return call_in_turn("close", SYS_close, descriptor);
}

}  // extern "C"
