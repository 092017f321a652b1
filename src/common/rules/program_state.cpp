// SPDX-License-Identifier: GPL-3.0-or-later
#include "program_state.h"

namespace m47 {

QString folder_with_separator(const QString& folder) {
    return folder.endsWith(u'/') ? folder : folder + u'/';
}

QString unit_name(int unit) {
    if (unit == kDbmv) return QStringLiteral("dBmV");
    return unit == kDbm ? QStringLiteral("dBm") : QStringLiteral("dBuV");
}

double unit_offset(int unit) {
    switch (unit) {
        case kDbmv:
            return 60;
        case kDbm:
            return 109;
        default:
            return 0;
    }
}

}  // namespace m47
