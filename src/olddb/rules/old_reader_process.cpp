// SPDX-License-Identifier: GPL-3.0-or-later
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "confinement.h"
#include "jet_code_pages.h"
#include "jet_file.h"
#include "old_reader.h"
#include "old_stream.h"

namespace m47 {
namespace {

constexpr rlim_t kSeconds = 25;
[[maybe_unused]] constexpr rlim_t kMemory = 400'000'000;  // bytes, besides the file

void limit(__rlimit_resource resource, rlim_t most) {
    const rlimit both{most, most};
    setrlimit(resource, &both);
}

/// Whatever a damaged file of `size` bytes makes of this process: it ends soon, fills neither the
/// memory nor the disk, and leaves no core.
void limit_this_process([[maybe_unused]] qsizetype size) {
    limit(RLIMIT_CPU, kSeconds);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, 0);
#ifndef M47_SANITIZED  // whose bookkeeping takes terabytes of addresses
    limit(RLIMIT_AS, kMemory + static_cast<rlim_t>(size));
#endif
    // A user's own settings of the library would change what it reads.
    for (const char* name : {"MDBOPTS", "MDBICONV", "MDB_ICONV", "MDB_JET3_CHARSET", "MDBPATH"})
        ::unsetenv(name);
}

/// The file on stdin, as memory that only shows it; empty where that cannot be.
QByteArrayView handed_over_file() {
    struct stat about {};
    if (::fstat(STDIN_FILENO, &about) != 0 || !S_ISREG(about.st_mode) || about.st_size == 0)
        return {};
    const auto size = static_cast<size_t>(about.st_size);
    void* start = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, STDIN_FILENO, 0);
    if (start == MAP_FAILED) return {};
    return {static_cast<const char*>(start), about.st_size};
}

OldReading read_for_another(QByteArrayView file, const Confinement& confinement) {
    try {
        OldDatabase database = read_jet_file(file);
        database.reader_was_held = confinement.no_files || confinement.few_calls;
        return database;
    } catch (const Fault& fault) {
        return QString::fromUtf8(fault.what());
    } catch (const std::exception&) {
        return QString();
    }
}

/// Straight to the system: a stream of the library would ask it for more than this process may.
bool hand_over(QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t written =
            ::write(STDOUT_FILENO, bytes.data(), static_cast<size_t>(bytes.size()));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes = bytes.sliced(written);
    }
    return true;
}

}  // namespace

int run_old_reader() {
    // What the program that started this one has open is nothing to a reader.
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
    const QByteArrayView file = handed_over_file();
    ::close(STDIN_FILENO);
    load_code_pages();
    limit_this_process(file.size());
    const Confinement confinement = confine_this_process();
    const bool written = hand_over(bytes_of_reading(read_for_another(file, confinement)));
    // At once: the library's leftovers are not worth tidying up, and may be damaged.
    ::_exit(written ? EXIT_SUCCESS : EXIT_FAILURE);
}

}  // namespace m47
