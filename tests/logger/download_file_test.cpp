// SPDX-License-Identifier: GPL-3.0-or-later
// Logs that are saved, opened and deleted.
#include "download_test.h"

namespace m47::logger {

void DownloadTest::a_download_is_saved_and_recalled_byte_for_byte() {
    start({QStringLiteral("--logger-bytes"), QStringLiteral("200000")});
    click("cmddownload");
    const QByteArray sent = sent_for(QStringLiteral("DATAOUT"));
    QVERIFY(sent.size() > 200000);
    QCOMPARE(content_of(in_folder("DWL.TMP")), sent + "\r\n");
    QCOMPARE(screen_->data.text(), sent + "\r\n");
    QCOMPARE(shown(), QString::fromLatin1(sent).remove(u'\r') + u'\n');

    QStringList filters;
    answer_dialog(in_folder("day.dwl"), &filters);
    find<QAction>("save")->trigger();
    QCOMPARE(filters, QStringList{QStringLiteral("(*.dwl)")});
    QCOMPARE(content_of(in_folder("day.dwl")), sent + "\r\n\r\n");
    QCOMPARE(find<QLabel>("nome_file")->text(), in_folder("day.dwl"));

    const QString before = shown();
    click("cmdclearall");
    click("cmddownload");
    QCOMPARE(shown(), QStringLiteral("OK\n"));
    answer_dialog(in_folder("day.dwl"), &filters);
    find<QAction>("open")->trigger();
    QCOMPARE(filters, QStringList{QStringLiteral("(*.dwl)")});
    QCOMPARE(shown(), before + u'\n');
}

void DownloadTest::saving_overwrites_and_adds_the_ending_dwl() {
    start({QStringLiteral("--logger-bytes"), QStringLiteral("500")});
    click("cmddownloadlast");
    answer_dialog(in_folder("day"));
    find<QAction>("save")->trigger();
    QCOMPARE(find<QLabel>("nome_file")->text(), in_folder("day.dwl"));
    click("cmddownload");
    answer_dialog(in_folder("day.dwl"));
    find<QAction>("save")->trigger();
    QCOMPARE(content_of(in_folder("day.dwl")), sent_for(QStringLiteral("DATAOUT")) + "\r\n\r\n");
}

void DownloadTest::a_file_that_is_chosen_is_that_file() {
    start_alone();
    open_screen();
    const auto put = [this](const char* name, const QByteArray& bytes) {
        QFile file(in_folder(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    };
    put("PLAIN", "chosen\r\n");
    put("PLAIN.dwl", "another\r\n");
    answer_dialog(in_folder("PLAIN"));
    find<QAction>("open")->trigger();
    QCOMPARE(shown(), QString("chosen\n"));
    QCOMPARE(find<QLabel>("nome_file")->text(), in_folder("PLAIN"));
    answer_dialog(in_folder("PLAIN"));
    find<QAction>("save")->trigger();
    QCOMPARE(content_of(in_folder("PLAIN")), QByteArray("chosen\r\n\r\n"));
    QCOMPARE(content_of(in_folder("PLAIN.dwl")), QByteArray("another\r\n"));
    answer_dialog(in_folder("PLAIN"));
    find<QAction>("delete")->trigger();
    QVERIFY(!QFile::exists(in_folder("PLAIN")));
    // A name that no file has is the short one of a ".dwl".
    answer_dialog(in_folder("PLAIN"));
    find<QAction>("open")->trigger();
    QCOMPARE(shown(), QString("another\n"));
}

void DownloadTest::the_database_is_no_file_to_choose() {
    start_alone();
    open_screen();
    const QString database = in_folder("VKDM47_03.mdb");
    program_state().database_file = database;
    QVERIFY(QFile::link(database, in_folder("other.dwl")));
    const QString sites = in_folder("sites.sqlite");
    QVERIFY(QFile::copy(database, sites));
    program_state().sites_file = sites;
    for (const char* name : {"VKDM47_03.mdb", "other.dwl", "sites.sqlite"}) {
        QString told;
        answer_dialog(in_folder(name));
        QTimer::singleShot(400, this, [&told] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            QVERIFY(box);
            told = box->text();
            box->accept();
        });
        find<QAction>("delete")->trigger();
        const QString what = QString::fromLatin1(name).startsWith("sites")
                                 ? " is this program's file of sites and visits."
                                 : " is the database of this program.";
        QVERIFY2(told.endsWith(what + " Choose another file."), qPrintable(told));
        QVERIFY(QFile::exists(database) && QFile::exists(sites));
    }
}

void DownloadTest::a_cancelled_dialog_changes_nothing() {
    start({QStringLiteral("--logger-bytes"), QStringLiteral("500")});
    click("cmddownload");
    answer_dialog(in_folder("day.dwl"));
    find<QAction>("save")->trigger();
    const QString before = shown();
    for (const char* key : {"open", "save", "delete"}) {
        answer_dialog(QString());
        find<QAction>(key)->trigger();
        QCOMPARE(shown(), before);
        QCOMPARE(find<QLabel>("nome_file")->text(), in_folder("day.dwl"));
    }
}

void DownloadTest::deleting_asks_nothing_and_a_missing_file_is_silent() {
    start({QStringLiteral("--logger-bytes"), QStringLiteral("500")});
    click("cmddownload");
    answer_dialog(in_folder("day.dwl"));
    find<QAction>("save")->trigger();
    QStringList filters;
    answer_dialog(in_folder("day.dwl"), &filters);
    find<QAction>("delete")->trigger();
    QCOMPARE(filters, QStringList{QStringLiteral("(*.dwl)")});
    QVERIFY(!QFileInfo::exists(in_folder("day.dwl")));
    QCOMPARE(shown(), QString());
    answer_dialog(in_folder("day.dwl"));
    find<QAction>("delete")->trigger();
    answer_dialog(in_folder("day.dwl"));
    find<QAction>("open")->trigger();
    QCOMPARE(shown(), QString());
    QCOMPARE(find<QLabel>("nome_file")->text(), in_folder("day.dwl"));
}

}  // namespace m47::logger
