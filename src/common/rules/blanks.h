// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47 {

/// `text` without blanks at both ends; TABs and line ends, which the meter tells apart from blanks,
/// stay.
inline QString without_blanks(const QString& text) {
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text[first] == u' ') ++first;
    while (last > first && text[last - 1] == u' ') --last;
    return text.mid(first, last - first);
}

}  // namespace m47
