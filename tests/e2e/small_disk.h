// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sys/mount.h>

#include <QDir>
#include <QFile>

namespace m47 {

/// A disk of a few pages in memory that can be filled, emptied and write-protected. Mounting one
/// wants the rights of root.
class SmallDisk {
  public:
    SmallDisk(const QString& folder, int kibibytes) : folder_(folder) {
        QDir().mkpath(folder_);
        const QByteArray size = "size=" + QByteArray::number(kibibytes) + "k";
        mounted_ = ::mount("tmpfs", name().constData(), "tmpfs", 0, size.constData()) == 0;
    }
    ~SmallDisk() {
        if (mounted_) ::umount2(name().constData(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool mounted() const { return mounted_; }
    QString path(const QString& file) const { return folder_ + u'/' + file; }

    /// Takes every block that is left.
    void fill() {
        QFile filler(path(kFiller));
        if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) return;
        const QByteArray block(1024, 'x');
        while (filler.write(block) == block.size()) continue;
    }
    void make_room() { QFile::remove(path(kFiller)); }

    bool protect(bool on) {
        const unsigned long flags = MS_REMOUNT | (on ? MS_RDONLY : 0);
        return ::mount("tmpfs", name().constData(), "tmpfs", flags, nullptr) == 0;
    }

  private:
    static constexpr auto kFiller = "filler";
    QByteArray name() const { return QFile::encodeName(folder_); }
    QString path(const char* file) const { return path(QString::fromLatin1(file)); }

    QString folder_;
    bool mounted_ = false;
};

}  // namespace m47
