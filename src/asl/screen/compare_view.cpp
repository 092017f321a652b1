// SPDX-License-Identifier: GPL-3.0-or-later
#include "compare_view.h"

#include <QFontDatabase>
#include <QHeaderView>
#include <QPushButton>

#include "asl_texts.h"
#include "dialog_buttons.h"
#include "ui_compare_view.h"

namespace m47::asl {
namespace {

/// Address, the left bytes, a gap, the right bytes.
constexpr int kLeftColumn = 1;
constexpr int kRightColumn = kLeftColumn + SlotComparison::kRowBytes + 1;
constexpr int kColumns = kRightColumn + SlotComparison::kRowBytes;

QString two_digits(int byte) {
    return QStringLiteral("%1").arg(byte & 0xFF, 2, 16, QLatin1Char('0')).toUpper();
}

}  // namespace

CompareView::CompareView(const QList<Comparable>& entries, int left, int right, const Texts& texts,
                         QWidget* parent)
    : QDialog(parent), entries_(entries), texts_(texts), ui_(std::make_unique<Ui::CompareView>()) {
    ui_->setupUi(this);
    setWindowTitle(texts.pick(asl_text::kCompareTitle));
    name_buttons(ui_->compare_buttons, texts);
    // Wide enough for both columns of bytes at once.
    ui_->compare_table->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);
    ui_->compare_table->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    ui_->compare_table->setColumnCount(kColumns);
    for (QComboBox* box : {ui_->compare_left, ui_->compare_right}) {
        for (const Comparable& entry : entries_) box->addItem(entry.label);
        box->setCurrentIndex(box == ui_->compare_left ? left : right);
        connect(box, &QComboBox::currentIndexChanged, this, &CompareView::show_choice);
    }
    show_choice();
}

CompareView::~CompareView() = default;

void CompareView::ask(const QString& text) {
    question_ = text;
    ui_->compare_result->setWordWrap(true);
    for (QComboBox* box : {ui_->compare_left, ui_->compare_right}) box->setEnabled(false);
    ui_->compare_buttons->setStandardButtons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    ui_->compare_buttons->button(QDialogButtonBox::Cancel)->setDefault(true);
    name_buttons(ui_->compare_buttons, texts_);
    connect(ui_->compare_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    show_choice();
}

void CompareView::show_result(const QString& text) {
    ui_->compare_result->setText(question_.isEmpty() ? text : text + u'\n' + question_);
}

void CompareView::show_choice() {
    const Comparable& left = entries_.at(ui_->compare_left->currentIndex());
    const Comparable& right = entries_.at(ui_->compare_right->currentIndex());
    if (!left.block || !right.block) {
        show_result(texts_.pick(asl_text::kNotComparable));
        ui_->compare_table->setRowCount(0);
        return;
    }
    const SlotComparison comparison = compare_slots(*left.block, *right.block);
    const QString bytes = QString::number(SlotBlock::kBytes);
    show_result(
        comparison.differing == 0
            ? texts_.pick(asl_text::kSame).arg(bytes)
            : texts_.pick(asl_text::kDiffering).arg(QString::number(comparison.differing), bytes));
    show_rows(comparison);
    tell_empty(left);
    if (&right != &left) tell_empty(right);
}

/// What is compared with nothing differs everywhere: that is no news of the satellite.
void CompareView::tell_empty(const Comparable& entry) {
    if (!entry.block->holds_no_satellite()) return;
    const QString label = entry.label.section(QStringLiteral("  "), 0, 0);
    ui_->compare_result->setText(ui_->compare_result->text() + u'\n' +
                                 texts_.pick(asl_text::kNoSatelliteIn).arg(label));
}

void CompareView::show_rows(const SlotComparison& comparison) {
    QTableWidget* table = ui_->compare_table;
    table->clearContents();
    table->setRowCount(static_cast<int>(comparison.rows.size()));
    const auto put = [&](int row, int column, const QString& text, bool differs) {
        auto* cell = new QTableWidgetItem(text);
        cell->setTextAlignment(Qt::AlignCenter);
        if (differs) {
            // Bold as well, so that no colour has to be told from another.
            QFont font = table->font();
            font.setBold(true);
            cell->setFont(font);
            cell->setBackground(palette().highlight());
            cell->setForeground(palette().highlightedText());
        }
        table->setItem(row, column, cell);
    };
    for (int row = 0; row < table->rowCount(); ++row) {
        const ComparedRow& one = comparison.rows.at(row);
        put(row, 0, two_digits(one.address), false);
        for (int at = 0; at < one.left.size(); ++at) {
            put(row, kLeftColumn + at, two_digits(one.left[at]), one.differs[at]);
            put(row, kRightColumn + at, two_digits(one.right[at]), one.differs[at]);
        }
    }
    table->resizeColumnsToContents();
    table->resizeRowsToContents();
}

}  // namespace m47::asl
