// SPDX-License-Identifier: GPL-3.0-or-later
#include "confinement.h"
#include "held_process.h"
#include "jet_code_pages.h"
#include "jet_file.h"
#include "old_reader.h"
#include "old_stream.h"

namespace m47::olddb {
namespace {

constexpr qint64 kSeconds = 25;

/// What a damaged file of `size` bytes may take of the memory.
qint64 memory_for([[maybe_unused]] qsizetype size) {
#ifdef M47_SANITIZED  // whose bookkeeping takes terabytes of addresses
    return 0;
#else
    constexpr qint64 kBesidesFile = 400'000'000;
    return kBesidesFile + size;
#endif
}

/// A user's own settings of the library would change what it reads.
void forget_settings() {
    for (const char* name : {"MDBOPTS", "MDBICONV", "MDB_ICONV", "MDB_JET3_CHARSET", "MDBPATH"})
        qunsetenv(name);
}

OldReading read_for_another(QByteArrayView file, const platform::Confinement& confinement) {
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

}  // namespace

int run_old_reader() {
    platform::close_all_but_streams();
    const QByteArrayView file = platform::take_input_file();
    load_code_pages();
    forget_settings();
    platform::limit_this_process(kSeconds, memory_for(file.size()));
    const platform::Confinement confinement = platform::confine_this_process();
    const bool written = platform::hand_over(bytes_of_reading(read_for_another(file, confinement)));
    // At once: the library's leftovers are not worth tidying up, and may be damaged.
    platform::end_at_once(written);
}

}  // namespace m47::olddb
