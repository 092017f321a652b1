// SPDX-License-Identifier: GPL-3.0-or-later
// Printing on a machine without a printer: the dialog is offered and a PDF comes out of it.
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPrintDialog>
#include <QPrinter>
#include <QProcess>
#include <QProgressDialog>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "text_printer.h"

namespace m47::shell {

class PrintTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void a_pdf_holds_the_lines_as_plain_text() {
        QTemporaryDir folder;
        const QString pdf = folder.filePath(QStringLiteral("page.pdf"));
        QWidget screen;
        QTimer::singleShot(200, &screen, [pdf] {
            auto* dialog = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            dialog->printer()->setOutputFormat(QPrinter::PdfFormat);
            dialog->printer()->setOutputFileName(pdf);
            dialog->done(QDialog::Accepted);
        });
        const QString text =
            QStringLiteral("\n\n\tDATE\tTIME\tFR\n\t21/11/26\t10:00:00\t1000.0\n\t\t");
        QVERIFY(print_text(&screen, QStringLiteral("Page"), text, Texts()));
        QProcess reader;
        reader.start(QStringLiteral("pdftotext"),
                     {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
        QVERIFY(reader.waitForFinished());
        const QString read = QString::fromUtf8(reader.readAllStandardOutput()).simplified();
        QVERIFY2(read.startsWith(QStringLiteral("DATE TIME FR 21/11/26 10:00:00 1000.0")),
                 qPrintable(read));
    }

    void a_cancelled_dialog_prints_nothing() {
        QWidget screen;
        QTimer::singleShot(200, &screen, [] {
            auto* dialog = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            dialog->reject();
        });
        QVERIFY(!print_text(&screen, QStringLiteral("Page"), QStringLiteral("x"), Texts()));
    }

    void a_long_page_shows_its_progress_and_can_be_cancelled() {
        QTemporaryDir folder;
        const QString pdf = folder.filePath(QStringLiteral("page.pdf"));
        QFile older(pdf);
        QVERIFY(older.open(QIODevice::WriteOnly) && older.write("older") == 5);
        older.close();
        QString text;
        for (int row = 0; row < 50000; ++row)
            text += QStringLiteral("\t21/11/26\t10:00:00\t1000.0\t10600\t%1\n").arg(row);
        QWidget screen;
        screen.show();
        QTimer::singleShot(200, &screen, [pdf] {
            auto* dialog = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            dialog->printer()->setOutputFormat(QPrinter::PdfFormat);
            dialog->printer()->setOutputFileName(pdf);
            dialog->done(QDialog::Accepted);
        });
        // The window lives on meanwhile: its timers come, and the button takes a click.
        QStringList seen;
        QTimer alive;
        connect(&alive, &QTimer::timeout, &screen, [&seen] {
            auto* progress = qobject_cast<QProgressDialog*>(QApplication::activeModalWidget());
            if (!progress) return;
            seen += progress->labelText();
            if (seen.size() == 3)
                QTest::mouseClick(progress->findChild<QPushButton*>(), Qt::LeftButton);
        });
        alive.start(20);
        QVERIFY(!print_text(&screen, QStringLiteral("Page"), text, Texts()));
        QVERIFY2(seen.size() >= 3, qPrintable(seen.join(u'|')));
        QVERIFY(
            QRegularExpression("^Printing: line [1-9]\\d* of 50001$").match(seen[2]).hasMatch());
        QVERIFY(seen[2] != seen[0]);
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList("page.pdf"));
        QVERIFY(older.open(QIODevice::ReadOnly));
        QCOMPARE(older.readAll(), QByteArray("older"));
    }
};

}  // namespace m47::shell

QTEST_MAIN(m47::shell::PrintTest)
#include "print_test.moc"
