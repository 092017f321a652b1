// SPDX-License-Identifier: GPL-3.0-or-later
#include "held_process.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "descriptor_io.h"

namespace m47::platform {
namespace {

void limit(__rlimit_resource resource, rlim_t most) {
    const rlimit both{most, most};
    setrlimit(resource, &both);
}

QByteArrayView map_input() {
    struct stat about {};
    if (::fstat(STDIN_FILENO, &about) != 0 || !S_ISREG(about.st_mode) || about.st_size == 0)
        return {};
    const auto size = static_cast<std::size_t>(about.st_size);
    void* start = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, STDIN_FILENO, 0);
    if (start == MAP_FAILED) return {};
    return {static_cast<const char*>(start), about.st_size};
}

}  // namespace

void close_all_but_streams() {
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
}

QByteArrayView take_input_file() {
    const QByteArrayView file = map_input();
    ::close(STDIN_FILENO);
    return file;
}

void limit_this_process(qint64 seconds, qint64 memory) {
    limit(RLIMIT_CPU, static_cast<rlim_t>(seconds));
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, 0);
    if (memory > 0) limit(RLIMIT_AS, static_cast<rlim_t>(memory));
}

bool hand_over(QByteArrayView bytes) {
    return !write_all(STDOUT_FILENO, {bytes.data(), static_cast<std::size_t>(bytes.size())});
}

void end_at_once(bool good) {
    ::_exit(good ? EXIT_SUCCESS : EXIT_FAILURE);
}

}  // namespace m47::platform
