// SPDX-License-Identifier: GPL-3.0-or-later
#include "column_headers.h"

namespace m47::logger {
namespace {

// Places count from 0. The lengths are those of the longest unit, dBuV or dBmV.
constexpr qsizetype kAnalogUnitAt = 19;
constexpr qsizetype kAnalogUnitLength = 2;
constexpr qsizetype kDigitalUnitAt = 22;
constexpr qsizetype kDigitalUnitLength = 4;

}  // namespace

ColumnHeaders column_headers(const QString& last_reply) {
    return {QStringLiteral("APR MHz CH  dB") + last_reply.mid(kAnalogUnitAt, kAnalogUnitLength) +
                QStringLiteral("   VA VA2 CN\r\n"),
            QStringLiteral("DPR MHz CH  (") + last_reply.mid(kDigitalUnitAt, kDigitalUnitLength) +
                QStringLiteral(")   BER    CN\r\n")};
}

}  // namespace m47::logger
