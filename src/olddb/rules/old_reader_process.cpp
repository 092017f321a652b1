// SPDX-License-Identifier: GPL-3.0-or-later
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "jet_file.h"
#include "old_reader.h"
#include "old_stream.h"

namespace m47 {
namespace {

constexpr rlim_t kSeconds = 25;
[[maybe_unused]] constexpr rlim_t kMemory = 400'000'000;  // bytes

void limit(__rlimit_resource resource, rlim_t most) {
    const rlimit both{most, most};
    setrlimit(resource, &both);
}

/// Whatever a damaged file makes of this process: it ends soon, fills neither the memory nor the
/// disk, writes no file and leaves no core.
void limit_this_process() {
    limit(RLIMIT_CPU, kSeconds);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, 0);
#ifndef M47_SANITIZED  // whose bookkeeping takes terabytes of addresses
    limit(RLIMIT_AS, kMemory);
#endif
    // A user's own settings of the library would change what it reads.
    for (const char* name : {"MDBOPTS", "MDBICONV", "MDB_ICONV", "MDB_JET3_CHARSET", "MDBPATH"})
        ::unsetenv(name);
}

OldReading read_for_another(const char* path) {
    try {
        return read_jet_file(path);
    } catch (const Fault& fault) {
        return QString::fromUtf8(fault.what());
    } catch (const std::exception&) {
        return QString();
    }
}

}  // namespace

int run_old_reader(const char* path) {
    limit_this_process();
    const QByteArray bytes = bytes_of_reading(read_for_another(path));
    const auto size = static_cast<size_t>(bytes.size());
    const bool written =
        std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0;
    // At once: the library's leftovers are not worth tidying up, and may be damaged.
    ::_exit(written ? EXIT_SUCCESS : EXIT_FAILURE);
}

}  // namespace m47
