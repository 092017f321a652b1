// SPDX-License-Identifier: GPL-3.0-or-later
#include "manual_page.h"

#include <QDir>
#include <QFileInfo>

#include "screen_table.h"

namespace m47::shell {
namespace {

constexpr Bilingual kNoManual{
    "The manual is not installed with this program. It was looked for in %1.",
    "Il manuale non è installato con questo programma. È stato cercato in %1."};

}  // namespace

QString manual_page_name(const QString& key) {
    for (const ScreenEntry& screen : screen_table())
        if (key == QLatin1String(screen.key)) return QString::fromLatin1(screen.manual_page);
    return QStringLiteral("index");
}

QStringList manual_folders(const QString& program_folder) {
    const QDir folder(program_folder);
    return {
        QDir::cleanPath(folder.filePath(QStringLiteral("manual"))),
        QDir::cleanPath(folder.filePath(QStringLiteral("../share/doc/m47-remote/html"))),
    };
}

QString find_manual_page(const QStringList& folders, const QString& name, const Texts& texts) {
    // The manual is written in these two.
    const auto language = texts.language == kItalian ? QStringLiteral("it") : QStringLiteral("en");
    for (const QString& folder : folders) {
        const QString path = QStringLiteral("%1/%2/%3.html").arg(folder, language, name);
        if (QFileInfo(path).isFile()) return path;
    }
    return {};
}

QString manual_missing_text(const QStringList& folders, const Texts& texts) {
    return texts.pick(kNoManual).arg(folders.join(QStringLiteral(", ")));
}

}  // namespace m47::shell
