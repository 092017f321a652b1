// SPDX-License-Identifier: GPL-3.0-or-later
#include "work.h"

namespace m47::link {

Work::Work(Link& link, const Bilingual& words, const QStringList& values)
    : link_(link), outermost_(!link.left_off) {
    if (outermost_) link_.activity.begin();
    at(words, values);
}

Work::~Work() {
    if (!outermost_) return;
    const std::optional<Said> how_far = link_.left_off;
    if (!(link_.interrupted && link_.interrupted())) link_.left_off.reset();
    link_.activity.end(how_far);
}

void Work::at(const Bilingual& words, const QStringList& values) {
    if (outermost_) link_.left_off = Said{words, values};
}

void Work::doing(const Bilingual& words, const QStringList& values) {
    if (outermost_) link_.activity.say({words, values});
}

void Work::reached(int done, int all) {
    if (outermost_) link_.activity.reached(done, all);
}

bool send_at_the_end(Link& link, const QString& command) noexcept {
    const InOrder in_order(link);
    try {
        return link.ask(command) == QStringLiteral("OK");
    } catch (...) {
        // The meter goes on as it was told before, until its next user tells it something.
        return false;
    }
}

}  // namespace m47::link
