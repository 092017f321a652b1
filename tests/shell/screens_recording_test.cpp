// SPDX-License-Identifier: GPL-3.0-or-later
// The line is recorded by the menu.
#include "screens_test.h"

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

}  // namespace m47::shell
