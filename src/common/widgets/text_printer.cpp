// SPDX-License-Identifier: GPL-3.0-or-later
#include "text_printer.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QTextDocument>
#include <QTextOption>

namespace m47 {
namespace {

constexpr int kColumnCharacters = 9;

void lay_out(QTextDocument& document, const QString& text) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(8);
    document.setDefaultFont(font);
    QTextOption option;
    option.setTabStopDistance(QFontMetricsF(font).horizontalAdvance(u'0') * kColumnCharacters);
    option.setWrapMode(QTextOption::WrapAnywhere);
    document.setDefaultTextOption(option);
    document.setPlainText(text);
}

}  // namespace

bool print_text(QWidget* screen, const QString& title, const QString& text) {
    const QPrinterInfo default_printer = QPrinterInfo::defaultPrinter();
    QPrinter printer(default_printer);
    printer.setDocName(title);
    printer.setPageOrientation(QPageLayout::Landscape);
    printer.setCopyCount(1);
    if (default_printer.isNull()) {
        QPrintDialog dialog(&printer, screen);
        dialog.setWindowTitle(title);
        if (dialog.exec() != QDialog::Accepted) return false;
    }
    QTextDocument document;
    lay_out(document, text);
    document.print(&printer);
    return printer.printerState() != QPrinter::Error;
}

}  // namespace m47
