// SPDX-License-Identifier: GPL-3.0-or-later
#include "file_options.h"

#include <QDir>
#include <QFileInfo>
#include <QList>
#include <algorithm>
#include <array>

#include "database.h"
#include "file_place.h"
#include "publishing.h"
#include "site_store.h"

namespace m47::unattended {
namespace {

struct NamedFile {
    QString option;
    QString name;    ///< as it was given
    QString path{};  ///< from the root
};

/// What the run itself keeps.
struct Kept {
    QString name;
    const char* what;
};

QList<NamedFile> named_files(const Options& options, const QDir& folder) {
    QList<NamedFile> files{{QStringLiteral("--config"), options.configuration},
                           {QStringLiteral("--log"), options.log},
                           {QStringLiteral("--publish-token-file"), options.publish.token_file},
                           {QStringLiteral("--screenshot"), options.screenshot},
                           {QStringLiteral("--trace"), options.trace},
                           {QStringLiteral("--replay"), options.replay},
                           {QStringLiteral("--problem-report"), options.problem_report},
                           {QStringLiteral("--import-database"), options.import_database},
                           {QStringLiteral("--export-plan"), options.export_plan.file},
                           {QStringLiteral("--import-plan"), options.import_plan.file}};
    files.removeIf([](const NamedFile& file) { return file.name.isEmpty(); });
    for (NamedFile& file : files) file.path = folder.absoluteFilePath(file.name);
    return files;
}

/// Where the file is, or will be, without links: also behind one that names no file yet.
QString place_of(const QString& path, int links = 0) {
    constexpr int kMostLinks = 40;  // as the system follows them
    const QFileInfo about(path);
    if (about.exists()) return about.canonicalFilePath();
    if (about.isSymLink() && links < kMostLinks) return place_of(about.symLinkTarget(), links + 1);
    const QString folder = QFileInfo(about.absolutePath()).canonicalFilePath();
    return (folder.isEmpty() ? about.absolutePath() : folder) + u'/' + about.fileName();
}

/// One file can have two names.
bool lead_to_one_file(const QString& one, const QString& other) {
    return platform::same_file(one, other).value_or(place_of(one) == place_of(other));
}

/// The file of the engine itself or one that it has beside it.
bool is_kept_file(const QString& path, const QString& kept) {
    return std::ranges::any_of(std::array{"", "-journal", "-wal", "-shm"}, [&](const char* beside) {
        return lead_to_one_file(path, kept + QLatin1String(beside));
    });
}

}  // namespace

QString file_option_fault(const Options& options, const QString& base_dir) {
    const QDir folder(base_dir);
    const std::array kept{
        Kept{QLatin1String(db::kDatabaseFile), "the database"},
        Kept{QLatin1String(sites::kSitesFile), "the file of sites"},
        Kept{outbox_file(options, base_dir), "the outbox"},
    };
    const QList<NamedFile> files = named_files(options, folder);
    for (qsizetype k = 0; k < files.size(); ++k) {
        for (const Kept& own : kept)
            if (!own.name.isEmpty() &&
                is_kept_file(files[k].path, folder.absoluteFilePath(own.name)))
                return QStringLiteral("%1 names %2: %3")
                    .arg(files[k].option, QLatin1String(own.what), files[k].name);
        for (qsizetype other = 0; other < k; ++other)
            if (lead_to_one_file(files[k].path, files[other].path))
                return QStringLiteral("%1 and %2 name the same file: %3")
                    .arg(files[other].option, files[k].option, files[k].name);
    }
    return {};
}

}  // namespace m47::unattended
