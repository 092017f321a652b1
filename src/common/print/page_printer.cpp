// SPDX-License-Identifier: GPL-3.0-or-later
#include "page_printer.h"

#include <QFile>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QProgressDialog>
#include <QTextLayout>
#include <QTextOption>
#include <cstdio>

namespace m47 {
namespace {

constexpr int kColumnCharacters = 9;
constexpr int kMillisecondsBeforeProgress = 500;
constexpr double kFontPoints = 8;

constexpr Bilingual kPrinting{"Printing: line %1 of %2", "Stampa: riga %1 di %2"};
constexpr Bilingual kCancel{"Cancel", "Annulla"};

/// Draws lines of text down a page, and says when the page is full.
class LinePainter {
  public:
    LinePainter(QPrinter& printer, QPainter& painter)
        : painter_(painter), room_(printer.pageLayout().paintRectPixels(printer.resolution())) {
        QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        font.setPointSizeF(kFontPoints);
        font_ = QFont(font, &printer);
        room_.moveTo(0, 0);
        option_.setTabStopDistance(QFontMetricsF(font_, &printer).horizontalAdvance(u'0') *
                                   kColumnCharacters);
        option_.setWrapMode(QTextOption::WrapAnywhere);
    }

    void end_page() {
        painter_.setFont(font_);
        painter_.drawText(room_, Qt::AlignRight | Qt::AlignBottom, QString::number(++page_));
        y_ = 0;
    }

    /// Draws `line` in as many rows as it needs, each through `new_page` where none is left.
    template <class NewPage>
    void draw(const QString& line, NewPage new_page) {
        QTextLayout layout(line, font_, painter_.device());
        layout.setTextOption(option_);
        layout.beginLayout();
        for (QTextLine row = layout.createLine(); row.isValid(); row = layout.createLine()) {
            row.setLineWidth(room_.width());
            // The last row of a page is its number's.
            if (y_ + 2 * row.height() > room_.height()) new_page();
            row.draw(&painter_, QPointF(0, y_));
            y_ += row.height();
        }
        layout.endLayout();
    }

  private:
    QPainter& painter_;
    QRectF room_;
    QFont font_;
    QTextOption option_;
    double y_ = 0;
    int page_ = 0;
};

/// Shows how far the printing is and takes the wish to cancel it; a short one shows nothing.
class PrintProgress {
  public:
    PrintProgress(QWidget* screen, const QString& title, int lines, const Texts& texts)
        : dialog_(screen), text_(texts.pick(kPrinting)), lines_(lines) {
        dialog_.setObjectName(QStringLiteral("print_progress"));
        dialog_.setWindowTitle(title);
        dialog_.setCancelButtonText(texts.pick(kCancel));
        dialog_.setRange(0, lines);
        dialog_.setWindowModality(Qt::WindowModal);
        dialog_.setMinimumDuration(kMillisecondsBeforeProgress);
    }

    /// False when the user has cancelled.
    bool show(int line) {
        dialog_.setLabelText(text_.arg(line).arg(lines_));
        dialog_.setValue(line);
        return !dialog_.wasCanceled();
    }

  private:
    QProgressDialog dialog_;
    QString text_;
    int lines_;
};

bool print_all(QPrinter& printer, const QStringList& lines, PrintProgress& progress) {
    QPainter painter;
    if (!painter.begin(&printer)) return false;
    LinePainter page(printer, painter);
    bool good = true;
    for (int line = 0; line < lines.size() && good; ++line)
        page.draw(lines[line], [&] {
            page.end_page();
            good = good && printer.newPage() && progress.show(line);
        });
    page.end_page();
    if (!good) printer.abort();
    return painter.end() && good && printer.printerState() != QPrinter::Error;
}

/// An older file stands until the new one is whole.
bool print_file(QPrinter& printer, const QStringList& lines, PrintProgress& progress) {
    const QString path = printer.outputFileName();
    const QString part = path + QStringLiteral(".part");
    printer.setOutputFileName(part);
    const bool printed = print_all(printer, lines, progress);
    if (printed &&
        std::rename(QFile::encodeName(part).constData(), QFile::encodeName(path).constData()) == 0)
        return true;
    QFile::remove(part);
    return false;
}

bool choose_printer(QPrinter& printer, QWidget* screen, const QString& title) {
    QPrintDialog dialog(&printer, screen);
    dialog.setWindowTitle(title);
    return dialog.exec() == QDialog::Accepted;
}

}  // namespace

bool PagePrinter::print(QWidget* screen, const QString& title, const QString& text,
                        const Texts& texts) {
    const QPrinterInfo default_printer = QPrinterInfo::defaultPrinter();
    QPrinter printer(default_printer);
    printer.setDocName(title);
    printer.setPageOrientation(QPageLayout::Landscape);
    printer.setCopyCount(1);
    if (default_printer.isNull() && !choose_printer(printer, screen, title)) return false;
    const QStringList lines = QString(text).remove(u'\r').split(u'\n');
    PrintProgress progress(screen, title, static_cast<int>(lines.size()), texts);
    if (printer.outputFormat() == QPrinter::PdfFormat) return print_file(printer, lines, progress);
    return print_all(printer, lines, progress);
}

}  // namespace m47
