// SPDX-License-Identifier: GPL-3.0-or-later
#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "database.h"

#include "engine.h"
#include "fields.h"
#include "schema.h"
#include "tables.h"

namespace m47 {
namespace {

const QString kFirstPlan = QStringLiteral("PLAN 1");

[[noreturn]] void throw_system_fault() {
    throw Fault(std::strerror(errno));
}

/// Makes the system write the file or folder to the medium; false with errno set.
bool sync(const QString& path, int flags) {
    const int handle = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
    if (handle < 0) return false;
    const bool synced = ::fsync(handle) == 0;
    const int reason = errno;
    ::close(handle);
    errno = reason;
    return synced;
}

/// An empty file of a name of its own beside `target`, gone again with this object unless it has
/// become the target.
class Draft {
  public:
    explicit Draft(const QString& target) : target_(QFile::encodeName(target)) {
        const QFileInfo about(target);
        folder_ = about.absolutePath();
        const QString start = QStringLiteral("%1/.%2.%3-")
                                  .arg(folder_, about.fileName())
                                  .arg(QCoreApplication::applicationPid());
        for (int number = 1;; ++number) {
            path_ = start + QString::number(number);
            const int handle = ::open(QFile::encodeName(path_).constData(),
                                      O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (handle >= 0) {
                ::close(handle);
                return;
            }
            if (errno != EEXIST) throw_system_fault();
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
        if (!sync(path_, O_RDWR)) throw_system_fault();
        const QByteArray draft = QFile::encodeName(path_);
        int result = ::renameat2(AT_FDCWD, draft.constData(), AT_FDCWD, target_.constData(),
                                 RENAME_NOREPLACE);
        // Some network file systems know no such renaming.
        if (result != 0 && (errno == EINVAL || errno == ENOSYS))
            result = ::link(draft.constData(), target_.constData());
        if (result != 0 && errno != EEXIST) throw_system_fault();
        // Not every file system syncs folders; the file is in its place and whole either way.
        static_cast<void>(sync(folder_, O_RDONLY | O_DIRECTORY));
    }

  private:
    QByteArray target_;
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

}  // namespace m47
