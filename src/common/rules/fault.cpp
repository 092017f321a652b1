// SPDX-License-Identifier: GPL-3.0-or-later
#include "fault.h"

namespace m47 {

QString Fault::text(const Texts& texts) const {
    return words_ ? texts.pick(*words_) : QString::fromUtf8(what());
}

}  // namespace m47
