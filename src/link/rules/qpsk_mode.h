// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>

#include "link.h"

namespace m47::link {

/// Its readings are good so many seconds after its start.
inline constexpr double kAfterQpsk = 5;
/// What the meter gives for the MER without lock, dB.
inline constexpr double kNoLockMer = 1;

/// How the meter's answer names a reading.
inline const QString kMerLabel = QStringLiteral("MER   :");
inline const QString kOffsetLabel = QStringLiteral("CFO   :");

/// The meter's QPSK mode, while it lives; it is left even where nobody knows whether it was
/// entered.
class QpskMode {
  public:
    explicit QpskMode(Link& link) : link_(link) {}
    ~QpskMode();
    QpskMode(const QpskMode&) = delete;
    QpskMode& operator=(const QpskMode&) = delete;

    /// Begins it at the frequency and symbol rate that the meter is set to, and waits until its
    /// readings are good.
    void enter();
    /// The answer with all its readings; nothing where there was none.
    std::optional<QString> ask();

  private:
    Link& link_;
};

/// What stands behind `label` in such an answer; nothing where it does not name it.
std::optional<QString> labelled(const QString& label, const QString& answer);

}  // namespace m47::link
