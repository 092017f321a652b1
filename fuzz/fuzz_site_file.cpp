// SPDX-License-Identifier: GPL-3.0-or-later
// A file of sites from a colleague: it is refused with one sentence, or read whole; what was read
// is written and read back the same, and its visits can be compared.
#include <cmath>

#include "fuzzing.h"
#include "site_file.h"
#include "visit_comparison.h"

namespace {

using namespace m47::sites;

void check_comparison(const SiteWithVisits& whole) {
    for (const VisitWithRows& earlier : whole.visits)
        for (const VisitWithRows& later : whole.visits) {
            const auto compared = compare_visits(earlier.rows, later.rows);
            HOLDS(compared.size() >= counting(later.rows).size());
            HOLDS(compared.size() <= counting(earlier.rows).size() + counting(later.rows).size());
            for (const ProgramComparison& program : compared) {
                HOLDS(program.earlier || program.later);
                HOLDS(std::isfinite(program.badness));
            }
        }
}

void check_refusal(const m47::Said& why) {
    const QString told = why.in(m47::Texts());
    HOLDS(!told.isEmpty() && told.size() < 400);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes = fuzzing::Input(data, size).byte_array();
    const SiteFileRead read = read_site_file(bytes);
    if (read.refused) {
        HOLDS(read.sites.empty());
        check_refusal(*read.refused);
        return 0;
    }
    const QByteArray written = site_file_bytes(read.sites);
    const SiteFileRead again = read_site_file(written);
    HOLDS(!again.refused && site_file_bytes(again.sites) == written);
    HOLDS(again.sites.size() == read.sites.size());
    for (const SiteWithVisits& whole : read.sites) check_comparison(whole);
    return 0;
}
