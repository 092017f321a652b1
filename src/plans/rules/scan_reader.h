// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <vector>

namespace m47::plans {

/// A transponder in the words of its table; what the table does not say is empty.
struct Transponder {
    int line = 0;    ///< where it begins in the table, from 1
    QString name{};  ///< of its heading, where that is more than "CHANNEL"
    QString system{};
    QString frequency{};     ///< kHz
    QString polarisation{};  ///< begins with H, V, L or R
    QString symbol_rate{};   ///< S/s
    QString modulation{};    ///< "PSK/8", or "8PSK" in the old form
    QString code{};          ///< rate of the inner code, "3/4", or "AUTO"
};

/// The transponders of a DVB scan table in either form, in their order. A line that belongs to none
/// is one of which nothing is known.
std::vector<Transponder> read_transponders(const QString& table);

/// True where the first line that says something is a heading or a transponder of the old form.
bool is_scan_table(const QString& text);

}  // namespace m47::plans
