// SPDX-License-Identifier: GPL-3.0-or-later
#include "work.h"

namespace m47::link {

Work::Work(Link& link, const Bilingual& words, const QStringList& values)
    : link_(link), outermost_(!link.left_off) {
    at(words, values);
}

Work::~Work() {
    if (outermost_ && !(link_.interrupted && link_.interrupted())) link_.left_off.reset();
}

void Work::at(const Bilingual& words, const QStringList& values) {
    if (outermost_) link_.left_off = Said{words, values};
}

}  // namespace m47::link
