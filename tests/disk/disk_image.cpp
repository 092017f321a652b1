// SPDX-License-Identifier: GPL-3.0-or-later
#include "disk_image.h"

#include <fcntl.h>

#include <QDir>

namespace m47 {
namespace {

constexpr int kFolder = -1;

}  // namespace

QList<DiskChange> recorded_changes(const QByteArray& record) {
    QList<DiskChange> changes;
    for (qsizetype at = 0; at < record.size();) {
        const qsizetype end = record.indexOf('\n', at);
        const QByteArray line = record.mid(at, end - at);
        const QList<QByteArray> words = line.split(' ');
        DiskChange change;
        change.call = words[0];
        change.descriptor = words[1].toInt();
        change.offset = words[2].toLongLong();
        change.name = QString::fromUtf8(QByteArrayList(words.mid(4)).join(' '));
        at = end + 1;
        if (change.call == "write" || change.call == "said") {
            change.bytes = record.mid(at, words[3].toLongLong());
            at += change.bytes.size();
        }
        changes += change;
    }
    return changes;
}

DiskImage::DiskImage(const QString& folder, const QMap<QString, QByteArray>& files)
    : folder_(folder) {
    for (auto file = files.begin(); file != files.end(); ++file) {
        names_[file.key()] = static_cast<int>(files_.size());
        files_ += {file.value(), {}};
    }
    safe_names_ = names_;
}

QString DiskImage::relative(const QString& path) const {
    return QDir::cleanPath(path).mid(folder_.size() + 1);
}

void DiskImage::name(const QString& path, int file) {
    if (file < 0)
        names_.remove(path);
    else
        names_[path] = file;
    waiting_names_ += {path, file};
}

void DiskImage::open(const DiskChange& change) {
    const QString path = relative(change.name);
    if ((change.offset & O_TMPFILE) == O_TMPFILE) {
        // It gets its name when it is whole.
        files_ += File();
        descriptors_[change.descriptor] = static_cast<int>(files_.size()) - 1;
        return;
    }
    if (path.isEmpty()) {
        descriptors_[change.descriptor] = kFolder;
        return;
    }
    if (!names_.contains(path)) {
        files_ += File();
        name(path, static_cast<int>(files_.size()) - 1);
    }
    const int file = names_[path];
    descriptors_[change.descriptor] = file;
    if ((change.offset & O_TRUNC) != 0) files_[file].waiting += {0, {}, true};
}

void DiskImage::put(const Part& part, QByteArray& content) {
    if (part.cut) {
        content.resize(part.at, '\0');
        return;
    }
    const qint64 end = part.at + part.bytes.size();
    if (content.size() < end) content.resize(end, '\0');
    content.replace(part.at, part.bytes.size(), part.bytes);
}

void DiskImage::sync(int descriptor) {
    const int file = descriptors_.value(descriptor, kFolder);
    if (file == kFolder) {
        safe_names_ = names_;
        waiting_names_.clear();
        return;
    }
    for (const Part& part : std::as_const(files_[file].waiting)) put(part, files_[file].safe);
    files_[file].waiting.clear();
}

/// The file of a name, or of the descriptor that stands for one.
int DiskImage::file_of(const QString& path) const {
    const QString descriptors = QStringLiteral("/proc/self/fd/");
    if (path.startsWith(descriptors))
        return descriptors_.value(path.mid(descriptors.size()).toInt(), kFolder);
    if (!names_.contains(relative(path))) qFatal("no file %s", qPrintable(path));
    return names_[relative(path)];
}

void DiskImage::apply(const DiskChange& change) {
    if (change.call == "open") return open(change);
    if (change.call == "sync") return sync(change.descriptor);
    if (change.call == "unlink") return name(relative(change.name), -1);
    if (change.call == "rename" || change.call == "link") {
        const QStringList both = change.name.split(u'\t');
        name(relative(both[1]), file_of(both[0]));
        if (change.call == "rename") name(relative(both[0]), -1);
        return;
    }
    if (change.call != "write" && change.call != "truncate") return;
    // By its name where it is not open.
    const int file = change.descriptor < 0 ? names_[relative(change.name)]
                                           : descriptors_.value(change.descriptor);
    files_[file].waiting += {change.offset, change.bytes, change.call == "truncate"};
    last_written_ = file;
}

QByteArray DiskImage::left_of(const File& file, Leaves leaves, QRandomGenerator& random) const {
    QByteArray content = file.safe;
    if (leaves == Leaves::nothing || leaves == Leaves::names) return content;
    const bool is_last = &file == &files_[qMax(0, last_written_)];
    for (qsizetype k = 0; k < file.waiting.size(); ++k) {
        Part part = file.waiting[k];
        const qsizetype half = part.bytes.size() / 2;
        const bool last = is_last && k + 1 == file.waiting.size();
        if (leaves == Leaves::half_the_last && last) part.bytes.truncate(half);
        if (leaves == Leaves::some) {
            const int chance = static_cast<int>(random.bounded(3));
            if (chance == 0) continue;
            if (chance == 1) part.bytes.truncate(half);
        }
        put(part, content);
    }
    return content;
}

QMap<QString, QByteArray> DiskImage::after_power_cut(Leaves leaves,
                                                     QRandomGenerator& random) const {
    qsizetype named = waiting_names_.size();
    if (leaves == Leaves::nothing || leaves == Leaves::contents) named = 0;
    // A disk keeps the order of names in its own journal.
    if (leaves == Leaves::some) named = random.bounded(static_cast<int>(named) + 1);
    QMap<QString, int> names = safe_names_;
    for (const Naming& one : waiting_names_.first(named)) {
        if (one.file < 0)
            names.remove(one.name);
        else
            names[one.name] = one.file;
    }
    QMap<QString, QByteArray> left;
    for (auto one = names.begin(); one != names.end(); ++one)
        left[one.key()] = left_of(files_[one.value()], leaves, random);
    return left;
}

}  // namespace m47
