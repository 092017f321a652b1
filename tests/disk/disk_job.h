// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <memory>

#include "process_support.h"

namespace m47 {

inline const QString kDatabase = QStringLiteral("VKDM47_03.mdb");

/// A call to the disk that is to fail.
struct DiskFault {
    QString kind;  ///< as the shim has them
    long at = 0;   ///< 0: none

    bool stays() const { return kind.endsWith(u'+'); }
};

/// The real program in a folder of its own, on a disk that fails.
class DiskJob {
  public:
    /// `files` lie in its folder at the start; with `meter` a simulated one is on the line.
    DiskJob(const DiskFault& fault, const QMap<QString, QByteArray>& files, bool meter);

    /// "METER" in an argument stands for the meter's device.
    void start(const QStringList& arguments);
    /// Records each change of the disk into a file outside of it; before the start.
    void record_to(const QString& path);
    void wait() { ending = remote_.wait(); }

    Ending ending;
    DiskFault fault;
    QString path(const QString& name) const;
    QByteArray content(const QString& name) const { return content_of(path(name)); }
    /// The call that failed and its file, empty where the run never got there.
    QByteArray hit() const;
    /// How many of its calls could have failed so.
    long calls() const;
    /// Names in its folder that begin with a dot.
    QStringList hidden() const;

  private:
    QList<QByteArray> report() const;

    QTemporaryDir folder_{folder_template()};
    std::unique_ptr<MeterProcess> meter_;
    RemoteProcess remote_;
};

/// The rows of the answer of a database, each with "|" between its cells; the engine's words where
/// it has none.
QStringList answer(const QString& path, const QString& statement);
/// What a database holds: "damaged" with the engine's words where it is not sound, else every row
/// of every table, of all plans and satellites or of `names` alone.
QString rows_in(const QString& path, const QStringList& names = {});
/// The names of plans and satellites in it, in the order in which they came.
QStringList names_in(const QString& path);

}  // namespace m47
