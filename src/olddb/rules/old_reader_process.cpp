// SPDX-License-Identifier: GPL-3.0-or-later
#include <QCoreApplication>

#include "confinement.h"
#include "held_process.h"
#include "jet_reader.h"
#include "old_reader.h"
#include "old_stream.h"
#include "part.h"

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

OldReading read_for_another(JetReader& reader, QByteArrayView file,
                            const platform::Confinement& confinement) {
    OldReading reading = reader.read(file);
    if (auto* const database = std::get_if<OldDatabase>(&reading))
        database->reader_was_held = confinement.no_files || confinement.few_calls;
    return reading;
}

}  // namespace

int run_old_reader() {
    // The folders of the parts are told from that of the program, which an application knows.
    int argc = 1;
    char name[] = "m47-remote";
    char* argv[] = {name, nullptr};
    const QCoreApplication application(argc, argv);
    Part part(kJetPart);
    auto* const reader = part.offer<JetReader>();
    if (!reader) platform::end_at_once(platform::hand_over(bytes_of_reading(part.path())));
    platform::close_all_but_streams();
    const QByteArrayView file = platform::take_input_file();
    reader->load_code_pages();
    forget_settings();
    platform::limit_this_process(kSeconds, memory_for(file.size()));
    const platform::Confinement confinement = platform::confine_this_process();
    const OldReading reading = read_for_another(*reader, file, confinement);
    const bool written = platform::hand_over(bytes_of_reading(reading));
    // At once: the library's leftovers are not worth tidying up, and may be damaged.
    platform::end_at_once(written);
}

}  // namespace m47::olddb
