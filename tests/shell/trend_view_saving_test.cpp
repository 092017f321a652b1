// SPDX-License-Identifier: GPL-3.0-or-later
// What the tab writes into files.
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QImage>
#include <QLineEdit>
#include <QMessageBox>
#include <QPalette>
#include <QTest>
#include <QTimer>

#include "trend_view.h"
#include "trend_view_test.h"

namespace m47::shell {

QByteArray TrendViewTest::content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TrendViewTest::a_picture_has_all_charts_whatever_the_window() {
    add_rows(20);
    open_tab(1);
    window().resize(1400, 430);
    QCoreApplication::processEvents();
    const int charts = plot()->axisRectCount();
    find<trend::TrendView>("trend")->save(in_folder(QStringLiteral("low.png")));
    window().resize(1400, 900);
    QCoreApplication::processEvents();
    find<trend::TrendView>("trend")->save(in_folder(QStringLiteral("high.png")));
    QVERIFY(charts < 3);
    const QImage low(in_folder(QStringLiteral("low.png")));
    const QImage high(in_folder(QStringLiteral("high.png")));
    QVERIFY(!low.isNull());
    QCOMPARE(low, high);
}

void TrendViewTest::the_table_is_saved_through_the_dialog_and_reads_back() {
    add_row(QStringLiteral("58.3"));
    add_row(QString(), QStringLiteral("11778.0"), QStringLiteral("FAIL"));
    open_tab(1);
    const QString path = in_folder(QStringLiteral("trend.tsv"));
    QTimer::singleShot(100, screen_, [path] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        name->setText(path);
        QTest::keyClick(name, Qt::Key_Return);
    });
    press("trend_save");
    QCOMPARE(content(path),
             QByteArray("TIME\tPROGRAM\tLEV\tBER\tMER\tSTATUS\tMARKS\tUNIT\n"
                        "2026-11-21 10:00:10\t11778.0 / 10600\t58.3\t2e-04\t14.2\tPASS\t\t\n"
                        "2026-11-21 10:00:20\t11778.0 / 10600\t\t2e-04\t14.2\tFAIL\t\t\n"));
}

void TrendViewTest::the_dialog_gives_the_suffix_of_the_chosen_kind() {
    add_rows(3);
    open_tab(1);
    const QString path = in_folder(QStringLiteral("plain"));
    QTimer::singleShot(100, screen_, [path] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        QCOMPARE(dialog->nameFilters().size(), 3);
        auto* kinds = dialog->findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
        kinds->setFocus();
        QTest::keyClick(kinds, Qt::Key_Down);
        auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        name->setText(path);
        QTest::keyClick(name, Qt::Key_Return);
    });
    press("trend_save");
    QVERIFY(content(path + QStringLiteral(".pdf")).startsWith("%PDF"));
}

void TrendViewTest::pictures_and_pages_are_whole_and_light_whatever_the_palette() {
    QPalette dark;
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    find<trend::TrendView>("trend")->setPalette(dark);
    add_rows(30);
    open_tab(1);
    const QString png = in_folder(QStringLiteral("trend.png"));
    const QString pdf = in_folder(QStringLiteral("trend.PDF"));
    find<trend::TrendView>("trend")->save(png);
    find<trend::TrendView>("trend")->save(pdf);
    const QImage image(png);
    QVERIFY(image.width() >= 1280 && image.height() >= 800);
    QCOMPARE(image.pixelColor(2, 2), QColor(Qt::white));
    QVERIFY(content(pdf).startsWith("%PDF"));
    QVERIFY(content(pdf).trimmed().endsWith("%%EOF"));
    QCoreApplication::processEvents();
    QCOMPARE(plot()->grab().toImage().pixelColor(2, 2), QColor(30, 30, 30));
}

void TrendViewTest::a_file_that_cannot_be_written_shows_one_box_and_leaves_nothing() {
    add_rows(3);
    open_tab(1);
    const QString path = in_folder(QStringLiteral("no folder/trend.tsv"));
    QString text;
    QTimer::singleShot(100, screen_, [&text] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        QVERIFY(box);
        text = box->text();
        box->accept();
    });
    find<trend::TrendView>("trend")->save(path);
    QVERIFY2(text.contains(path), qPrintable(text));
    QVERIFY(!QFileInfo::exists(path));
}

}  // namespace m47::shell
