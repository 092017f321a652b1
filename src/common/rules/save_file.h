// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSaveFile>

namespace m47 {

/// Puts what was written into the place of the older file. False: it was not written whole, the
/// older file stands as it was, and errorString() says why.
inline bool put_in_place(QSaveFile& file) {
    // What the disk has no room for may show no sooner than at the flush, and the commit alone
    // does not look at that: it would put an empty file into the older one's place.
    return file.flush() && file.commit();
}

}  // namespace m47
