// SPDX-License-Identifier: GPL-3.0-or-later
#include "asked_table.h"

#include <QHeaderView>
#include <QScrollBar>
#include <iterator>

#include "belief_words.h"

namespace m47::identify {
namespace {

/// What matters most comes first: a small screen has no room for the last ones.
constexpr Bilingual kAskedColumns[] = {
    {"Sky", "Cielo"}, {"LNB", "LNB"}, {"Answer", "Risposta"}, {"MS/s", "MS/s"}, {"IF", "IF"}};
constexpr Bilingual kAskedTips[] = {
    {"Frequency before the LNB, MHz", "Frequenza prima dell'LNB, MHz"},
    {"LNB supply and tone", "Alimentazione e tono LNB"},
    {"Level, or whether it locked", "Livello, oppure se ha agganciato"},
    {"Symbol rate that was to lock", "Symbol rate da agganciare"},
    {"Frequency behind the LNB, MHz", "Frequenza dopo l'LNB, MHz"}};
constexpr int kLnbColumn = 1;
constexpr int kAnswerColumn = 2;
constexpr int kUsualRows = 12;

/// As wide as what stands in each column.
QStringList widest_cells(const Texts& texts) {
    Asked lock;
    lock.question.kind = Question::Kind::lock;
    lock.answer = {.locked = true, .offset = -1.2};
    return {QStringLiteral("12750.0"), feed_text({.high_voltage = true, .tone = true}),
            answer_text(lock, std::nullopt, texts), QStringLiteral("30.000"),
            QStringLiteral("2150.0")};
}

}  // namespace

AskedTable::AskedTable(const Texts& texts, QWidget* parent) : QTableWidget(parent), texts_(texts) {
    setObjectName(QStringLiteral("identify_asked"));
    setColumnCount(static_cast<int>(std::size(kAskedColumns)));
    for (int column = 0; column < columnCount(); ++column) {
        auto* header = new QTableWidgetItem(texts.pick(kAskedColumns[column]));
        header->setToolTip(texts.pick(kAskedTips[column]));
        setHorizontalHeaderItem(column, header);
    }
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    horizontalHeader()->setStretchLastSection(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setTabKeyNavigation(false);
    // Once for all: measuring every row for each answer would take longer the more there are.
    const QStringList widest = widest_cells(texts);
    for (int column = 0; column < columnCount(); ++column) {
        const int wide = fontMetrics().horizontalAdvance(widest[column] + QStringLiteral("mm"));
        setColumnWidth(column, wide);
        all_columns_ += wide;
    }
}

QSize AskedTable::sizeHint() const {
    const int frame = 2 * frameWidth() + verticalScrollBar()->sizeHint().width();
    return {all_columns_ + frame, kUsualRows * verticalHeader()->defaultSectionSize()};
}

void AskedTable::showEvent(QShowEvent* event) {
    QTableWidget::showEvent(event);
    scrollToBottom();
}

void AskedTable::add(const Asked& asked, std::optional<LevelUnit> unit) {
    const QScrollBar* bar = verticalScrollBar();
    const bool at_end = bar->value() == bar->maximum();
    const Question& question = asked.question;
    const bool lock = question.kind == Question::Kind::lock;
    insertRow(rowCount());
    const QString cells[] = {QString::number(asked.sky_mhz, 'f', 1), feed_text(asked.lnb),
                             answer_text(asked, unit, texts_),
                             lock ? QString::number(question.rate, 'f', 3) : QString(),
                             QString::number(question.if_mhz, 'f', 1)};
    for (int column = 0; column < columnCount(); ++column) add_cell(column, cells[column]);
    if (at_end) scrollToBottom();
}

void AskedTable::add_cell(int column, const QString& text) {
    auto* item = new QTableWidgetItem(text);
    const bool number = column != kLnbColumn && column != kAnswerColumn;
    if (number) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    item->setToolTip(text);
    setItem(rowCount() - 1, column, item);
}

}  // namespace m47::identify
