// SPDX-License-Identifier: GPL-3.0-or-later
// What the menu has for whoever looks for a fault: the line is recorded, a problem reported.
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProcess>

#include "problem_dialog.h"
#include "screens_test.h"
#include "told_lines.h"

namespace m47::shell {
namespace {

QByteArray content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Chooses `path` in the file dialog that comes; says what it proposed.
void choose_file(BoxAnswers& boxes, const QString& path, QString* proposed = nullptr) {
    boxes.answer([=](QDialog* box) {
        auto* name = box->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        if (proposed) *proposed = name->text();
        name->setText(path);
        QTest::keyClick(name, Qt::Key_Return);
    });
}

/// Presses [Save…] of the dialog that comes, with `untick` and `tick` done.
void save_report(BoxAnswers& boxes, const char* tick = nullptr, const char* untick = nullptr) {
    boxes.answer([=](QDialog* box) {
        auto* list = box->findChild<QListWidget*>("problem_items");
        for (int row = 0; row < list->count(); ++row) {
            if (tick && list->item(row)->text().startsWith(QLatin1String(tick)))
                list->item(row)->setCheckState(Qt::Checked);
            if (untick && list->item(row)->text().startsWith(QLatin1String(untick)))
                list->item(row)->setCheckState(Qt::Unchecked);
        }
        box->accept();
    });
}

/// Unpacks `archive` into a new folder in `folder`; the names of what was in it.
QStringList unpacked(const QString& archive, const QString& folder) {
    QProcess tar;
    tar.start("tar", {"xzf", archive, "-C", folder});
    if (!tar.waitForFinished() || tar.exitCode() != 0) return {tar.readAllStandardError()};
    return QDir(folder + "/m47-problem").entryList(QDir::Files, QDir::Name);
}

}  // namespace

void ScreensTest::the_line_is_recorded_until_the_entry_is_chosen_again() {
    start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    auto* entry = find<QAction>("cmdtrace");
    QCOMPARE(entry->text(), QString("Re&cord the line…"));
    QVERIFY(!entry->isChecked());
    QVERIFY(!window().findChild<QWidget*>("recording"));

    BoxAnswers boxes;
    entry->trigger();
    QCOMPARE(boxes.take_seen().size(), 1);
    QVERIFY2(!entry->isChecked(), "a cancelled dialog records nothing");

    const QString path = in_folder("line.trace");
    QString proposed;
    choose_file(boxes, path, &proposed);
    entry->trigger();
    QVERIFY2(QRegularExpression("^line-[0-9]{8}-[0-9]{6}[.]trace$").match(proposed).hasMatch(),
             qPrintable(proposed));
    QVERIFY(entry->isChecked());
    auto* mark = find<QWidget>("recording");
    QVERIFY(mark->isVisible());
    QVERIFY2(mark->toolTip().contains("line.trace"), qPrintable(mark->toolTip()));
    QCOMPARE(mark->grab().toImage().pixelColor(mark->rect().center()).rgb(), 0xFFE01B24);
    find<QAction>("cmditaliano")->trigger();
    QVERIFY(mark->accessibleName().startsWith("La linea viene registrata in "));

    window().open_screen("realtime");
    auto* screen = window().screen_of("realtime");
    find<QAction>("single_acq", screen)->trigger();
    const QByteArray recorded = content(path);
    QVERIFY(recorded.startsWith("M47TRACE 1 "));
    QVERIFY2(recorded.contains(" LEVANL?<CR>") || recorded.contains(" FREQ "), recorded);
    QVERIFY(QRegularExpression("\nUSER [0-9. ]+ cmditaliano_Click\n")
                .match(QString::fromUtf8(recorded))
                .hasMatch());
    QVERIFY(QRegularExpression("\nUSER [0-9. ]+ [a-z]+_ButtonClick single_acq\n")
                .match(QString::fromUtf8(recorded))
                .hasMatch());

    entry->trigger();
    QVERIFY(!entry->isChecked());
    QVERIFY(!mark->isVisible());
    QVERIFY(content(path).endsWith(" recording ended\n"));
    const qsizetype length = content(path).size();
    find<QAction>("single_acq", screen)->trigger();
    QCOMPARE(content(path).size(), length);
    QCOMPARE(boxes.take_seen().size(), 1);
}

void ScreensTest::a_recording_that_ends_early_is_told_and_measuring_goes_on() {
    start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    program().recording().start("/dev/full");
    auto* notice = find<QLabel>("corrected_notice");
    QCOMPARE(notice->text(),
             QString("The recording of the line has ended, /dev/full cannot be written any more: "
                     "No space left on device"));
    QVERIFY(!find<QAction>("cmdtrace")->isChecked());
    program().recording().start(in_folder("none/line.trace"));
    QVERIFY2(notice->text().startsWith("The line is not recorded, "), qPrintable(notice->text()));
    QVERIFY(program().recording().lost());
    find<QAction>("cmditaliano")->trigger();
    program().recording().start("/dev/full");
    QVERIFY(notice->text().startsWith("La registrazione della linea è terminata, /dev/full"));
    QCOMPARE(program().link().ask("VER?").has_value(), true);
}

void ScreensTest::a_problem_is_reported_in_one_file_that_is_shown_before() {
    start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    told_lines().clear();
    told_lines().keep(QtWarningMsg, "m47.run", "in " + QDir::homePath() + "/rows.log");
    program().recording().start(in_folder("line.trace"));
    QVERIFY(program().link().ask("VER?"));

    BoxAnswers boxes;
    QStringList shown;
    QString first;
    boxes.answer([&](QDialog* box) {
        auto* list = box->findChild<QListWidget*>("problem_items");
        for (int row = 0; row < list->count(); ++row) {
            const bool ticked = list->item(row)->checkState() == Qt::Checked;
            shown += list->item(row)->text().section(u' ', 0, 0) + (ticked ? "" : " no");
        }
        first = box->findChild<QPlainTextEdit*>("problem_preview")->toPlainText();
        box->accept();
    });
    const QString path = in_folder("report.tar.gz");
    QString proposed;
    choose_file(boxes, path, &proposed);
    find<QAction>("cmdproblem")->trigger();
    QCOMPARE(boxes.take_seen().size(), 2);
    QCOMPARE(shown, QStringList({"versions.txt", "ports.txt", "messages.txt", "line.trace",
                                 "screen.png", "plans.sqlite no"}));
    QVERIFY2(first.contains("SQLite") && first.contains(qVersion()), qPrintable(first));
    QVERIFY2(
        QRegularExpression("^m47-problem-[0-9]{8}-[0-9]{6}[.]tar[.]gz$").match(proposed).hasMatch(),
        qPrintable(proposed));

    const QTemporaryDir folder;
    QCOMPARE(unpacked(path, folder.path()), QStringList({"line.trace", "messages.txt", "ports.txt",
                                                         "screen.png", "versions.txt"}));
    const auto file = [&](const char* name) {
        return content(folder.filePath("m47-problem/") + QLatin1String(name));
    };
    QVERIFY(file("line.trace").contains(" VER?<CR>\n"));
    QVERIFY2(file("messages.txt").endsWith("warning m47.run in ~/rows.log\n"),
             file("messages.txt").constData());
    QVERIFY(!file("messages.txt").contains(QDir::homePath().toUtf8() + '/'));
    QVERIFY(!QImage::fromData(file("screen.png"), "PNG").isNull());
    QVERIFY2(find<QLabel>("saved_name")->text().contains("report.tar.gz"), "not told");
}

void ScreensTest::the_plans_come_with_a_report_when_they_are_ticked() {
    BoxAnswers boxes;
    save_report(boxes, "plans.sqlite", "screen.png");
    const QString path = in_folder("report.tar.gz");
    choose_file(boxes, path);
    find<QAction>("cmdproblem")->trigger();
    const QTemporaryDir folder;
    const QStringList files = unpacked(path, folder.path());
    QVERIFY2(files.contains("plans.sqlite"), qPrintable(files.join(u' ')));
    QVERIFY(!files.contains("screen.png"));
    db::DatabaseError error{};
    const auto copy = db::Database::open(folder.filePath("m47-problem/plans.sqlite"), error);
    QVERIFY(copy);
    QVERIFY(!copy->gruppo().end_of_set());
}

void ScreensTest::of_a_long_recording_the_report_has_the_end() {
    constexpr qsizetype kMost = qsizetype{32} * 1024 * 1024;
    const QByteArray first("M47TRACE 1 2026-11-22T14:00:00Z m47-remote 1 Qt 2\n");
    const QByteArray line("TX 1.000 1.000 " + QByteArray(1000, 'x') + "<CR>\n");
    QFile file(in_folder("long.trace"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(first + line.repeated(kMost / line.size() + 100) + "NOTE 2.000 2.000 last\n");
    file.close();
    const std::vector<unattended::ProblemItem> items = unattended::problem_items(
        program_state(), program().connection(), file.fileName(), Person::here());
    const QByteArray& kept = items.back().bytes;
    QCOMPARE(items.back().name, QString("line.trace"));
    QVERIFY(QByteArray(items.back().what.english).startsWith("the last 32 MB"));
    QVERIFY(kept.size() <= kMost + first.size() && kept.size() > kMost - 2 * line.size());
    QVERIFY(kept.startsWith(first + line));
    QVERIFY(kept.endsWith(line + "NOTE 2.000 2.000 last\n"));
}

void ScreensTest::a_report_that_cannot_be_written_is_told_and_leaves_nothing() {
    find<QAction>("cmdinglese")->trigger();
    const auto report = [this](const QString& path) {
        const std::vector<unattended::ProblemItem> items = unattended::problem_items(
            program_state(), program().connection(), in_folder("no.trace"), Person::here());
        return unattended::write_problem_report(path, items, program_state().texts);
    };
    QCOMPARE(report(in_folder("none/report.tar.gz")), QString("No such file or directory"));
    QVERIFY(QDir(in_folder("")).mkdir("folder.tar.gz"));
    QCOMPARE(report(in_folder("folder.tar.gz")), QString("not a plain file"));
    // Without the packer an older report stays as it was.
    const QString path = in_folder("report.tar.gz");
    QCOMPARE(report(path), QString());
    const QByteArray before = content(path);
    const QByteArray programs = qgetenv("PATH");
    qputenv("PATH", in_folder("").toUtf8());
    const QString reason = report(path);
    qputenv("PATH", programs);
    QVERIFY2(reason.startsWith("the program \"tar\" failed: "), qPrintable(reason));
    QCOMPARE(content(path), before);
    QCOMPARE(QDir(in_folder("")).entryList({"report*"}).size(), 1);
}

}  // namespace m47::shell
