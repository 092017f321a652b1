// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_name.h"

#include "cut_text.h"
#include "stored_names.h"

namespace m47::programme {

QString plan_name(const QString& text) {
    // A capital can take more room than its small letter.
    return cut_to(cut_to(text, kLongestName).trimmed().toUpper(), kLongestName).trimmed();
}

}  // namespace m47::programme
