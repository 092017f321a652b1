// SPDX-License-Identifier: GPL-3.0-or-later
// Loaded before the C library (LD_PRELOAD) of a program under test: what it asks of the disk below
// a folder fails at the n-th call, or is recorded in its order. Set by the environment:
//   M47_DISK_FOLDER  below this folder; without a link in its path
//   M47_DISK_FAULT   enospc, eio, erofs, eintr, short or fsync; with a "+" behind it from the n-th
//                    call on, else at that one alone
//   M47_DISK_AT      n, from 1, among the calls that can fail so
//   M47_DISK_REPORT  takes a line for the first call that failed, its name and its file, and at the
//                    end of the program one with the number of calls that could have failed so
//   M47_DISK_RECORD  takes every change, see disk_image.h
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kDescriptors = 1024;
constexpr int kOwnFrom = 900;  // out of the way of the program's own

bool g_watched[kDescriptors];
char g_names[kDescriptors][PATH_MAX];

struct Settings {
    const char* folder = std::getenv("M47_DISK_FOLDER");
    const char* fault = std::getenv("M47_DISK_FAULT");
    long at = 0;
    bool stays = false;
    int record = -1;
    long calls = 0;
    bool told = false;

    Settings() {
        if (const char* number = std::getenv("M47_DISK_AT")) at = std::atol(number);
        stays = fault != nullptr && std::strchr(fault, '+') != nullptr;
        const char* path = std::getenv("M47_DISK_RECORD");
        if (path == nullptr) return;
        constexpr int kFlags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC;
        const long opened = syscall(SYS_openat, AT_FDCWD, path, kFlags, 0600);
        record = static_cast<int>(syscall(SYS_fcntl, opened, F_DUPFD_CLOEXEC, kOwnFrom));
        syscall(SYS_close, opened);
    }
};

Settings& settings() {
    static Settings once;
    return once;
}

bool fault_is(const char* kind) {
    const char* set = settings().fault;
    return set != nullptr && std::strncmp(set, kind, std::strlen(kind)) == 0;
}

/// `path` as seen from the root, in `whole`; false where it does not lie below the folder.
bool below_folder(int at, const char* path, char* whole) {
    const char* folder = settings().folder;
    if (folder == nullptr || path == nullptr) return false;
    if (path[0] == '/') {
        std::snprintf(whole, PATH_MAX, "%s", path);
    } else {
        if (at != AT_FDCWD || syscall(SYS_getcwd, whole, PATH_MAX) < 0) return false;
        const size_t length = std::strlen(whole);
        std::snprintf(whole + length, PATH_MAX - length, "/%s", path);
    }
    const size_t length = std::strlen(folder);
    return std::strncmp(whole, folder, length) == 0 &&
           (whole[length] == '/' || whole[length] == '\0');
}

bool watched(int descriptor) {
    return descriptor >= 0 && descriptor < kDescriptors && g_watched[descriptor];
}

const char* name_of(int descriptor) {
    return watched(descriptor) ? g_names[descriptor] : "";
}

void report(const char* call, const char* name) {
    const char* path = std::getenv("M47_DISK_REPORT");
    if (path == nullptr) return;
    char line[PATH_MAX + 64];
    const int length = std::snprintf(line, sizeof line, "%s %s\n", call, name);
    const long file = syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT | O_APPEND, 0600);
    syscall(SYS_write, file, line, static_cast<size_t>(length));
    syscall(SYS_close, file);
}

/// True where the call, which can fail in the wanted way, is the one that is to do so.
bool is_its_turn(const char* call, const char* name) {
    Settings& set = settings();
    const long number = __atomic_add_fetch(&set.calls, 1, __ATOMIC_SEQ_CST);
    if (set.at == 0 || (set.stays ? number < set.at : number != set.at)) return false;
    if (!set.told) report(call, name);
    set.told = true;
    return true;
}

__attribute__((destructor)) void report_number() {
    char number[32];
    std::snprintf(number, sizeof number, "%ld", settings().calls);
    // Other programs that this one starts have none.
    if (settings().calls > 0) report("calls", number);
}

enum Ability : unsigned {
    kCanFill = 1U,          // ENOSPC
    kCanBeProtected = 2U,   // EROFS
    kCanBeInterrupted = 4U  // EINTR
};

/// The error number that the call ends with; 0 for none. Any call can meet a broken disk.
int error_for(const char* call, const char* name, unsigned abilities) {
    int error = 0;
    if (fault_is("eio")) error = EIO;
    if (fault_is("enospc") && (abilities & kCanFill) != 0) error = ENOSPC;
    if (fault_is("erofs") && (abilities & kCanBeProtected) != 0) error = EROFS;
    if (fault_is("eintr") && (abilities & kCanBeInterrupted) != 0) error = EINTR;
    if (fault_is("fsync") && std::strstr(call, "sync") != nullptr) error = EIO;
    return error != 0 && is_its_turn(call, name) ? error : 0;
}

long failed(int error) {
    errno = error;
    return -1;
}

void record(const char* call, int descriptor, long offset, long length, const char* name,
            const void* bytes = nullptr) {
    const int file = settings().record;
    if (file < 0) return;
    const int kept = errno;
    char line[2 * PATH_MAX + 128];
    const int written = std::snprintf(line, sizeof line, "%s %d %ld %ld %s\n", call, descriptor,
                                      offset, length, name);
    syscall(SYS_write, file, line, static_cast<size_t>(written));
    if (bytes != nullptr) syscall(SYS_write, file, bytes, static_cast<size_t>(length));
    errno = kept;
}

int open_at(int at, const char* path, int flags, mode_t mode) {
    char whole[PATH_MAX];
    const bool ours = below_folder(at, path, whole);
    if (ours) {
        const bool writes = (flags & O_ACCMODE) != O_RDONLY;
        const unsigned abilities = kCanBeInterrupted | ((flags & O_CREAT) != 0 ? kCanFill : 0U) |
                                   (writes ? kCanBeProtected : 0U);
        if (const int error = error_for("open", whole, abilities))
            return static_cast<int>(failed(error));
    }
    const auto descriptor = static_cast<int>(syscall(SYS_openat, at, path, flags, mode));
    if (descriptor < 0 || descriptor >= kDescriptors) return descriptor;
    g_watched[descriptor] = ours;
    if (!ours) return descriptor;
    std::strcpy(g_names[descriptor], whole);
    record("open", descriptor, flags, 0, whole);
    return descriptor;
}

ssize_t write_at(int descriptor, const void* bytes, size_t length, off_t offset, bool placed) {
    const auto write = [&](size_t part) {
        return placed ? syscall(SYS_pwrite64, descriptor, bytes, part, offset)
                      : syscall(SYS_write, descriptor, bytes, part);
    };
    if (descriptor == STDOUT_FILENO)
        record("said", descriptor, 0, static_cast<long>(length), "", bytes);
    if (!watched(descriptor)) return write(length);
    const char* name = name_of(descriptor);
    if (const int error = error_for("write", name, kCanFill | kCanBeInterrupted))
        return failed(error);
    const bool half = fault_is("short") && length > 1 && is_its_turn("write", name);
    const long written = write(half ? length / 2 : length);
    if (written > 0) {
        const long at = placed ? offset : syscall(SYS_lseek, descriptor, 0, SEEK_CUR) - written;
        record("write", descriptor, at, written, name, bytes);
    }
    return written;
}

int sync_with(long call, const char* word, int descriptor) {
    if (watched(descriptor))
        if (const int error = error_for(word, name_of(descriptor), kCanFill | kCanBeInterrupted))
            return static_cast<int>(failed(error));
    const long result = syscall(call, descriptor);
    if (result == 0 && watched(descriptor)) record("sync", descriptor, 0, 0, name_of(descriptor));
    return static_cast<int>(result);
}

int watch_copy(int of, long copy) {
    if (copy < 0 || copy >= kDescriptors) return static_cast<int>(copy);
    g_watched[copy] = watched(of);
    if (!g_watched[copy]) return static_cast<int>(copy);
    std::memmove(g_names[copy], g_names[of], PATH_MAX);
    record("open", static_cast<int>(copy), 0, 0, g_names[copy]);
    return static_cast<int>(copy);
}

/// A file without a name gets one through the name of its descriptor.
bool is_nameless(const char* path, char* whole) {
    constexpr char kDescriptorNames[] = "/proc/self/fd/";
    constexpr size_t kLength = sizeof kDescriptorNames - 1;
    if (std::strncmp(path, kDescriptorNames, kLength) != 0) return false;
    std::snprintf(whole, PATH_MAX, "%s", path);
    return watched(std::atoi(path + kLength));
}

/// Renaming and linking.
int move_with(const char* word, long call, int from_at, const char* from, int to_at, const char* to,
              unsigned flags) {
    char old_name[PATH_MAX];
    char new_name[PATH_MAX];
    const bool ours = (below_folder(from_at, from, old_name) || is_nameless(from, old_name)) &&
                      below_folder(to_at, to, new_name);
    if (ours)
        if (const int error = error_for(word, new_name, kCanFill | kCanBeProtected))
            return static_cast<int>(failed(error));
    const long result = syscall(call, from_at, from, to_at, to, flags);
    if (result == 0 && ours) {
        char both[2 * PATH_MAX];
        std::snprintf(both, sizeof both, "%s\t%s", old_name, new_name);
        record(word, -1, 0, 0, both);
    }
    return static_cast<int>(result);
}

int unlink_at(int at, const char* path, int flags) {
    char whole[PATH_MAX];
    const bool ours = below_folder(at, path, whole);
    if (ours)
        if (const int error = error_for("unlink", whole, kCanBeProtected))
            return static_cast<int>(failed(error));
    const long result = syscall(SYS_unlinkat, at, path, flags);
    if (result == 0 && ours) record("unlink", -1, 0, 0, whole);
    return static_cast<int>(result);
}

int truncate_to(int descriptor, const char* name, off_t length) {
    char whole[PATH_MAX];
    const bool by_name = descriptor < 0;
    const bool ours = by_name ? below_folder(AT_FDCWD, name, whole) : watched(descriptor);
    const char* path = by_name ? whole : name_of(descriptor);
    if (ours)
        if (const int error =
                error_for("truncate", path, kCanBeProtected | kCanFill | kCanBeInterrupted))
            return static_cast<int>(failed(error));
    const long result =
        by_name ? syscall(SYS_truncate, name, length) : syscall(SYS_ftruncate, descriptor, length);
    if (result == 0 && ours) record("truncate", descriptor, length, 0, path);
    return static_cast<int>(result);
}

}  // namespace

extern "C" {

#define M47_OPEN(name)                               \
    int name(const char* path, int flags, ...) {     \
        std::va_list rest;                           \
        va_start(rest, flags);                       \
        const mode_t mode = va_arg(rest, mode_t);    \
        va_end(rest);                                \
        return open_at(AT_FDCWD, path, flags, mode); \
    }
#define M47_OPENAT(name)                                 \
    int name(int at, const char* path, int flags, ...) { \
        std::va_list rest;                               \
        va_start(rest, flags);                           \
        const mode_t mode = va_arg(rest, mode_t);        \
        va_end(rest);                                    \
        return open_at(at, path, flags, mode);           \
    }
M47_OPEN(open)
M47_OPEN(open64)
M47_OPENAT(openat)
M47_OPENAT(openat64)

int __open_2(const char* path, int flags) {
    return open_at(AT_FDCWD, path, flags, 0);
}
int __open64_2(const char* path, int flags) {
    return open_at(AT_FDCWD, path, flags, 0);
}

ssize_t write(int descriptor, const void* bytes, size_t length) {
    return write_at(descriptor, bytes, length, 0, false);
}
ssize_t pwrite(int descriptor, const void* bytes, size_t length, off_t offset) {
    return write_at(descriptor, bytes, length, offset, true);
}
ssize_t pwrite64(int descriptor, const void* bytes, size_t length, off_t offset) {
    return write_at(descriptor, bytes, length, offset, true);
}

int fsync(int descriptor) {
    return sync_with(SYS_fsync, "fsync", descriptor);
}
int fdatasync(int descriptor) {
    return sync_with(SYS_fdatasync, "fdatasync", descriptor);
}

int ftruncate(int descriptor, off_t length) noexcept {
    return truncate_to(descriptor, nullptr, length);
}
int ftruncate64(int descriptor, off_t length) noexcept {
    return truncate_to(descriptor, nullptr, length);
}
int truncate(const char* path, off_t length) noexcept {
    return truncate_to(-1, path, length);
}
int truncate64(const char* path, off_t length) noexcept {
    return truncate_to(-1, path, length);
}

#define M47_FCNTL(name)                                                            \
    int name(int descriptor, int command, ...) {                                   \
        std::va_list rest;                                                         \
        va_start(rest, command);                                                   \
        const long argument = va_arg(rest, long);                                  \
        va_end(rest);                                                              \
        const long result = syscall(SYS_fcntl, descriptor, command, argument);     \
        const bool copies = command == F_DUPFD || command == F_DUPFD_CLOEXEC;      \
        return copies ? watch_copy(descriptor, result) : static_cast<int>(result); \
    }
M47_FCNTL(fcntl)
M47_FCNTL(fcntl64)

int rename(const char* from, const char* to) noexcept {
    return move_with("rename", SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0);
}
int renameat(int from_at, const char* from, int to_at, const char* to) noexcept {
    return move_with("rename", SYS_renameat2, from_at, from, to_at, to, 0);
}
int renameat2(int from_at, const char* from, int to_at, const char* to, unsigned flags) noexcept {
    return move_with("rename", SYS_renameat2, from_at, from, to_at, to, flags);
}
int link(const char* from, const char* to) noexcept {
    return move_with("link", SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0);
}
int linkat(int from_at, const char* from, int to_at, const char* to, int flags) noexcept {
    return move_with("link", SYS_linkat, from_at, from, to_at, to, static_cast<unsigned>(flags));
}
int unlink(const char* path) noexcept {
    return unlink_at(AT_FDCWD, path, 0);
}
int unlinkat(int at, const char* path, int flags) noexcept {
    return unlink_at(at, path, flags);
}

int close(int descriptor) {
    int error = 0;
    if (watched(descriptor)) {
        error = error_for("close", name_of(descriptor), kCanFill | kCanBeInterrupted);
        record("close", descriptor, 0, 0, name_of(descriptor));
        g_watched[descriptor] = false;
    }
    const long result = syscall(SYS_close, descriptor);
    // The descriptor is gone all the same.
    return static_cast<int>(error != 0 ? failed(error) : result);
}

}  // extern "C"
