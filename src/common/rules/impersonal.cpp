// SPDX-License-Identifier: GPL-3.0-or-later
#include "impersonal.h"

#include <QDir>
#include <QRegularExpression>

#include "serial_line.h"

namespace m47 {
namespace {

/// Puts `with` in the place of `name` where it stands as a word of its own.
void replace_word(QString& text, const QString& name, const QString& with) {
    // Most lines have none, and an expression takes time.
    if (name.isEmpty() || !text.contains(name)) return;
    text.replace(
        QRegularExpression(QStringLiteral("(?<![\\w.-])") + QRegularExpression::escape(name) +
                           QStringLiteral("(?![\\w-]|\\.\\w)")),
        with);
}

}  // namespace

Person Person::here() {
    QStringList homes{QDir::cleanPath(QDir::homePath())};
    const QString real = QDir(homes.constFirst()).canonicalPath();
    if (!real.isEmpty() && real != homes.constFirst()) homes += real;
    return {homes, platform::name_of_user()};
}

QString impersonal(QString text, const Person& person) {
    for (const QString& home : person.homes)
        if (home != u"/") replace_word(text, home, QStringLiteral("~"));
    if (person.login != u"root") replace_word(text, person.login, QStringLiteral("user"));
    return text;
}

QByteArray impersonal_recording(const QByteArray& recording, const Person& person) {
    QByteArray result;
    result.reserve(recording.size());
    qsizetype begin = 0;
    while (begin < recording.size()) {
        qsizetype end = recording.indexOf('\n', begin) + 1;
        if (end == 0) end = recording.size();
        const QByteArray line = recording.mid(begin, end - begin);
        const bool wire = line.startsWith("RX ") || line.startsWith("TX ");
        result += wire ? line : impersonal(QString::fromUtf8(line), person).toUtf8();
        begin = end;
    }
    return result;
}

QString impersonal_preferences(const QString& text, const Person& person) {
    static const QRegularExpression kAssigned(QStringLiteral("=.*$"));
    QStringList lines = text.split(u'\n');
    bool files = false;
    for (QString& line : lines) {
        if (line.startsWith(u'[')) files = line.startsWith(QStringLiteral("[files]"));
        if (files) line.replace(kAssigned, QStringLiteral("=(left out)"));
    }
    return impersonal(lines.join(u'\n'), person);
}

}  // namespace m47
