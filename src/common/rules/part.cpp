// SPDX-License-Identifier: GPL-3.0-or-later
#include "part.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace m47 {

Part::Part(const char* name, const QStringList& folders)
    : file_(QStringLiteral("/lib%1.so").arg(QLatin1String(name))), folders_(folders) {}

QStringList Part::usual_folders() {
    const QDir program(QCoreApplication::applicationDirPath());
    return {program.filePath(QStringLiteral("plugins")),
            QDir::cleanPath(program.filePath(QStringLiteral(M47_PLUGIN_FOLDER)))};
}

void Part::find() {
    for (const QString& folder : folders_) {
        path_ = folder + file_;
        if (QFile::exists(path_)) break;
    }
}

bool Part::is_there() {
    find();
    return QFile::exists(path_);
}

QObject* Part::load() {
    find();
    // The loader forgets the name of a file that it does not find.
    if (loader_.fileName().isEmpty()) loader_.setFileName(path_);
    return loader_.instance();
}

}  // namespace m47
