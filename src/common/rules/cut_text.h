// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace m47 {

/// The first `length` characters of `text`, but no half of one.
inline QString cut_to(const QString& text, qsizetype length) {
    QString start = text.left(length);
    if (start.size() < text.size() && !start.isEmpty() && start.back().isHighSurrogate())
        start.chop(1);
    return start;
}

}  // namespace m47
