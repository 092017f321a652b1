// SPDX-License-Identifier: GPL-3.0-or-later
// Files that are read with a limit and written whole or not at all.
#include <sys/stat.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "file_lock.h"
#include "preferences.h"
#include "save_file.h"

namespace m47 {

class FilesTest : public QObject {
    Q_OBJECT

  private:
    QString path(const char* name) const { return folder_->filePath(QString::fromLatin1(name)); }
    QString put(const char* name, const QByteArray& bytes) const {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
        return file.fileName();
    }
    QString make_pipe(const char* name) const {
        if (mkfifo(QFile::encodeName(path(name)).constData(), 0600) != 0) qFatal("no pipe");
        return path(name);
    }
    static QByteArray content(const QString& path) {
        return platform::read_plain_file(path, 1000).bytes;
    }

    std::unique_ptr<QTemporaryDir> folder_;

  private Q_SLOTS:
    void init() { folder_ = std::make_unique<QTemporaryDir>(); }

    void a_plain_file_is_read_up_to_its_limit() {
        const QString file = put("a", "12345");
        QCOMPARE(platform::read_plain_file(file, 5).fault, platform::FileFault::none);
        QCOMPARE(platform::read_plain_file(file, 5).bytes, QByteArray("12345"));
        QCOMPARE(platform::read_plain_file(file, 4).fault, platform::FileFault::too_long);
        QCOMPARE(platform::read_plain_file(file, 4).bytes, QByteArray());
        QCOMPARE(platform::read_plain_file(put("empty", {}), 0).fault, platform::FileFault::none);
    }

    void what_is_no_plain_file_is_not_waited_for() {
        for (const QString& other :
             {make_pipe("pipe"), folder_->path(), QStringLiteral("/dev/zero")}) {
            QCOMPARE(platform::read_plain_file(other, 100).fault, platform::FileFault::not_plain);
            QCOMPARE(platform::read_plain_file(other, 100).bytes, QByteArray());
        }
        const platform::FileReading missing = platform::read_plain_file(path("none"), 100);
        QCOMPARE(missing.fault, platform::FileFault::missing);
        QCOMPARE(missing.reason, QString("No such file or directory"));
        QCOMPARE(platform::read_plain_file(put("a", "1") + "/below", 100).fault,
                 platform::FileFault::missing);
    }

    void a_link_is_followed_where_somebody_chose_it() {
        const QString file = put("a", "older");
        QVERIFY(QFile::link(file, path("link")));
        QCOMPARE(platform::read_plain_file(path("link"), 100).bytes, QByteArray("older"));
        QCOMPARE(platform::read_plain_file(path("link"), 100, platform::Links::refused).fault,
                 platform::FileFault::not_plain);
        QCOMPARE(write_whole_file(path("link"), "newer"), QString());
        QCOMPARE(content(file), QByteArray("newer"));
        QVERIFY(QFileInfo(path("link")).isSymLink());
        QCOMPARE(write_whole_file(path("link"), "own", platform::Links::refused),
                 QString("not a plain file"));
        QCOMPARE(content(file), QByteArray("newer"));
        QVERIFY(QFile::remove(file));
        QCOMPARE(write_whole_file(path("link"), "own", platform::Links::refused),
                 QString("not a plain file"));
        QVERIFY(!QFile::exists(file));
    }

    void only_a_plain_file_is_replaced() {
        const QString pipe = make_pipe("pipe");
        QCOMPARE(write_whole_file(pipe, "x"), QString("not a plain file"));
        QCOMPARE(write_whole_file(QStringLiteral("/dev/null"), "x"), QString("not a plain file"));
        QVERIFY(QDir(folder_->path()).mkdir("folder"));
        QCOMPARE(write_whole_file(path("folder"), "x"), QString("not a plain file"));
        QCOMPARE(write_whole_file(path("folder"), "x", platform::Links::refused),
                 QString("not a plain file"));
        QCOMPARE(write_whole_file(pipe, "x", platform::Links::refused),
                 QString("not a plain file"));
    }

    void what_cannot_be_remembered_is_not_waited_for() {
        const Preferences none(make_pipe("settings.ini"));
        QCOMPARE(none.directory(FilePurpose::log, "here"), QString("here"));
        none.file_chosen(FilePurpose::log, path("a"));
        const Preferences some(path("other.ini"));
        some.file_chosen(FilePurpose::log, path("a"));
        QCOMPARE(some.directory(FilePurpose::log, "here"), folder_->path());
    }

    void a_window_comes_back_where_it_can_be_seen() {
        const Preferences some(path("places.ini"));
        for (const QRect& rect :
             {QRect(20000, -20000, 50, 20000), QRect(-20000, 20000, 20000, 50)}) {
            some.keep_place("a", {rect});
            QVERIFY(some.place("a"));
            QCOMPARE(some.place("a")->rect, rect);
        }
        for (const QRect& rect : {QRect(20001, 0, 300, 200), QRect(0, -20001, 300, 200),
                                  QRect(0, 0, 49, 200), QRect(0, 0, 300, 20001)}) {
            some.keep_place("a", {rect});
            QVERIFY(!some.place("a"));
        }
    }

    void whoever_has_the_lock_keeps_the_others_away() {
        {
            const platform::FileLock first(folder_->path());
            QVERIFY(!first.refused());
            QElapsedTimer timer;
            timer.start();
            const platform::FileLock second(folder_->path());
            QVERIFY(second.refused());
            QVERIFY(timer.elapsed() >= 2000);
        }
        const platform::FileLock third(folder_->path());
        QVERIFY(!third.refused());
        // Where no lock can be had nobody is kept away.
        const platform::FileLock nowhere(path("none"));
        QVERIFY(!nowhere.refused());
    }
};

}  // namespace m47

QTEST_GUILESS_MAIN(m47::FilesTest)
#include "files_test.moc"
