// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <deque>
#include <mutex>

namespace m47 {

/// The last lines of what the program and its libraries have told, for whoever looks for a fault
/// afterwards. Any thread may tell.
class ToldLines {
  public:
    static constexpr std::size_t kLines = 200;
    /// Characters of a line that are kept.
    static constexpr qsizetype kLongest = 1000;

    /// Keeps `text` with the time, its severity and the subsystem (the name of a logging category)
    /// that told it.
    void keep(QtMsgType severity, const char* subsystem, const QString& text);

    /// "2026-11-22 14:05:12.345 warning m47.run no meter answers on port 1", the oldest first.
    QStringList lines() const;
    void clear();

  private:
    mutable std::mutex mutex_;
    std::deque<QString> lines_;
};

/// Those of this program.
ToldLines& told_lines();

}  // namespace m47
