// SPDX-License-Identifier: GPL-3.0-or-later
#include "work_folder.h"

#include <QDir>
#include <QFileInfo>

#include "database.h"
#include "site_store.h"

namespace m47::unattended {
namespace {

bool make_private_folder(const QString& path) {
    const QFileInfo folder(path);
    if (folder.exists()) return true;
    return QDir().mkpath(folder.path()) &&
           QDir().mkdir(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

}  // namespace

QString user_data_folder() {
    // The desktops' rule, which QStandardPaths does not keep: a relative path counts as none.
    const QString data = qEnvironmentVariable("XDG_DATA_HOME");
    const QString home = QDir::homePath() + QStringLiteral("/.local/share");
    return (data.startsWith(QLatin1Char('/')) ? data : home) + QStringLiteral("/m47-remote");
}

QString asked_folder(const Options& options) {
    return options.user_data ? user_data_folder() : options.directory;
}

bool enter_folder(const Options& options) {
    const QString folder = asked_folder(options);
    if (folder.isEmpty()) return true;
    if (options.user_data && !make_private_folder(folder)) return false;
    return QDir::setCurrent(folder);
}

bool work_in(const QString& folder, ProgramState& state) {
    if (!QDir::setCurrent(folder)) return false;
    state.base_dir = folder_with_separator(QDir::currentPath());
    state.database_file = state.base_dir + QLatin1String(db::kDatabaseFile);
    state.sites_file = state.base_dir + QLatin1String(sites::kSitesFile);
    return true;
}

}  // namespace m47::unattended
