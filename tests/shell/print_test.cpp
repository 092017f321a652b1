// SPDX-License-Identifier: GPL-3.0-or-later
// Printing on a machine without a printer: the dialog is offered and a PDF comes out of it.
#include <QAction>
#include <QPrintDialog>
#include <QPrinter>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "text_printer.h"

namespace m47 {

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
        QVERIFY(print_text(&screen, QStringLiteral("Page"), text));
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
        QVERIFY(!print_text(&screen, QStringLiteral("Page"), QStringLiteral("x")));
    }
};

}  // namespace m47

QTEST_MAIN(m47::PrintTest)
#include "print_test.moc"
