// SPDX-License-Identifier: GPL-3.0-or-later
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <system_error>

#include "database.h"
#include "engine.h"
#include "fields.h"
#include "file_place.h"
#include "medium.h"
#include "schema.h"
#include "tables.h"

namespace m47::db {
namespace {

const QString kFirstPlan = QStringLiteral("PLAN 1");

void throw_if(const std::error_code& error) {
    if (error) throw Fault(error.message());
}

/// An empty file of a name of its own beside `target`, gone again with this object unless it has
/// become the target.
class Draft {
  public:
    explicit Draft(const QString& target) : target_(target) {
        const QFileInfo about(target);
        folder_ = about.absolutePath();
        const QString start = QStringLiteral("%1/.%2.%3-")
                                  .arg(folder_, about.fileName())
                                  .arg(QCoreApplication::applicationPid());
        for (int number = 1;; ++number) {
            path_ = start + QString::number(number);
            const std::error_code error = platform::make_new_file(path_);
            if (!error) return;
            if (error != std::errc::file_exists) throw_if(error);
        }
    }

    ~Draft() {
        QFile::remove(path_);
        QFile::remove(path_ + QStringLiteral("-journal"));
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    const QString& path() const { return path_; }

    /// Puts the file in its place in one step, unless there is one by now.
    void publish() const {
        throw_if(platform::sync_file_at(path_));
        const std::error_code error = platform::put_in_free_place(path_, target_);
        if (error != std::errc::file_exists) throw_if(error);
        // Not every file system syncs folders; the file is in its place and whole either way.
        static_cast<void>(platform::sync_folder(folder_));
    }

  private:
    QString target_;
    QString folder_;
    QString path_;
};

void fill(const QString& path) {
    const Connection connection(path);
    const QSqlDatabase& database = connection.database();
    Query(database, QStringLiteral("BEGIN"));
    for (const Table& table : schema())
        for (const QString& statement : creation_statements(table)) Query(database, statement);
    for (const char* table : {table::kGruppo, table::kConfigurazione, table::kProgrammi})
        Query(database,
              QStringLiteral("INSERT INTO %1 (%2) VALUES (?)")
                  .arg(QLatin1String(table), QLatin1String(field::kNome)),
              {kFirstPlan});
    Query(database, QStringLiteral("COMMIT"));
}

bool is_taken(const QString& path) {
    const QFileInfo about(path);
    return about.exists() || about.isSymLink();
}

}  // namespace

bool Database::create(const QString& path, DatabaseError& error) {
    if (is_taken(path)) return true;
    try {
        const Draft draft(path);
        fill(draft.path());
        draft.publish();
        return true;
    } catch (const Fault& fault) {
        error = {DatabaseFault::cannot_create, path, QString::fromUtf8(fault.what())};
        return false;
    }
}

}  // namespace m47::db
