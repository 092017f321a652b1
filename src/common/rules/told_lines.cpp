// SPDX-License-Identifier: GPL-3.0-or-later
#include "told_lines.h"

#include <QDateTime>

#include "texts.h"

namespace m47 {
namespace {

QLatin1String name_of(QtMsgType severity) {
    switch (severity) {
        case QtDebugMsg:
            return QLatin1String("debug");
        case QtInfoMsg:
            return QLatin1String("info");
        case QtWarningMsg:
            return QLatin1String("warning");
        case QtCriticalMsg:
            return QLatin1String("critical");
        case QtFatalMsg:
            break;
    }
    return QLatin1String("fatal");
}

}  // namespace

void ToldLines::keep(QtMsgType severity, const char* subsystem, const QString& text) {
    const QString now =
        QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
    const QString line = now + u' ' + name_of(severity) + u' ' +
                         QLatin1String(subsystem ? subsystem : "default") + u' ' +
                         on_one_line(text.left(kLongest));
    const std::lock_guard lock(mutex_);
    if (lines_.size() == kLines) lines_.pop_front();
    lines_.push_back(line);
}

QStringList ToldLines::lines() const {
    const std::lock_guard lock(mutex_);
    return {lines_.cbegin(), lines_.cend()};
}

void ToldLines::clear() {
    const std::lock_guard lock(mutex_);
    lines_.clear();
}

ToldLines& told_lines() {
    static ToldLines lines;
    return lines;
}

}  // namespace m47
