// SPDX-License-Identifier: GPL-3.0-or-later
#include "new_file.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include "engine.h"
#include "file_place.h"
#include "medium.h"

namespace m47::db {
namespace {

void throw_if(const std::error_code& error) {
    if (error) throw FileFault(error);
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

}  // namespace

void make_database_file(const QString& path,
                        const std::function<void(const QSqlDatabase& database)>& fill) {
    const Draft draft(path);
    {
        const Connection connection(draft.path());
        fill(connection.database());
    }
    draft.publish();
}

}  // namespace m47::db
