// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QRandomGenerator>
#include <QString>

namespace m47 {

/// A change of the disk as the shim recorded it: a line "CALL DESCRIPTOR OFFSET LENGTH NAME", and
/// behind that of a "write" and of what was "said" on stdout its LENGTH bytes. OFFSET holds the
/// flags of an "open" and the new length of a "truncate"; the two names of a "rename" and of a
/// "link" have a TAB between them. The first may be a descriptor's, "/proc/self/fd/7".
struct DiskChange {
    QByteArray call;
    int descriptor = -1;
    qint64 offset = 0;
    QByteArray bytes;
    QString name;
};

QList<DiskChange> recorded_changes(const QByteArray& record);

/// How much of what no sync covers the power leaves.
enum class Leaves {
    all,
    nothing,
    contents,       ///< but no name made, moved or taken away
    names,          ///< but no content
    half_the_last,  ///< all but the second half of the last write
    some,           ///< of each write all, half or nothing, and the first few of the names
};
inline constexpr Leaves kEveryWay[] = {Leaves::all,   Leaves::nothing,       Leaves::contents,
                                       Leaves::names, Leaves::half_the_last, Leaves::some};

/// A folder as it stands on a disk, and what of it is only in memory yet.
class DiskImage {
  public:
    /// `files` by their names are safely there at the start.
    DiskImage(const QString& folder, const QMap<QString, QByteArray>& files);

    void apply(const DiskChange& change);
    /// What is found after the power has gone now.
    QMap<QString, QByteArray> after_power_cut(Leaves leaves, QRandomGenerator& random) const;

  private:
    struct Part {
        qint64 at = 0;
        QByteArray bytes;
        bool cut = false;  ///< no bytes: the file ends at `at`
    };
    struct File {
        QByteArray safe;
        QList<Part> waiting;
    };
    struct Naming {
        QString name;
        int file = -1;  ///< -1: the name is taken away
    };
    static void put(const Part& part, QByteArray& content);
    QByteArray left_of(const File& file, Leaves leaves, QRandomGenerator& random) const;
    QString relative(const QString& path) const;
    void open(const DiskChange& change);
    void name(const QString& path, int file);
    void sync(int descriptor);
    int file_of(const QString& path) const;

    QString folder_;
    QList<File> files_;
    QMap<QString, int> names_;  ///< as programs see them
    QMap<QString, int> safe_names_;
    QList<Naming> waiting_names_;
    QMap<int, int> descriptors_;  ///< to the file, -1 for the folder
    int last_written_ = -1;
};

}  // namespace m47
